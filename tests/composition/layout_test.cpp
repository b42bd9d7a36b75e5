// The order of members and of virtual slots is part of the model's interface.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"
#include "composition/read/ascii_parser.h"
#include "support/virtual_slot.h"

namespace {

// The address of every member, in the order given.
template <class... Members>
std::vector<const void*> addresses(const Members&... members) {
    return {static_cast<const void*>(&members)...};
}

TEST(Layout, MembersInOrder) {
    const auto in_order = [](const std::vector<const void*>& list) {
        return std::is_sorted(list.begin(), list.end());
    };
    const ASCIIParser p;
    EXPECT_TRUE(in_order(addresses(p.file, p.filename, p.status, p.sym, p.charClass, p.pushedBack, p.rewound,
                                   p.fileLength, p.bytesLeft, p.charCount, p.buffer, p.bufPos, p.bufCount,
                                   p.curChar, p.lastEol, p.textA, p.textB, p.text, p.textOnHeap, p.eolIsToken,
                                   p.openFlag, p.line)));
    CCompoChild child;
    EXPECT_TRUE(in_order(addresses(child.prev, child.next, child.type, child.item)));
    CDoubleLinkedList<CCompoChild> list;
    EXPECT_TRUE(in_order(addresses(list.head, list.tail, list.count)));
    const CFileItem file;
    EXPECT_TRUE(in_order(addresses(file.blendMode, file.alphaMode, file.path, file.isSequence)));
    const CComposition composition;
    EXPECT_TRUE(
        in_order(addresses(composition.name, composition.blendMode, composition.children, composition.parent,
                           composition.itemH, composition.compH, composition.parentFolder)));
    const tagProjectSettings s;
    EXPECT_TRUE(
        in_order(addresses(s.width, s.height, s.from, s.to, s.range, s.fps, s.aspect, s.local, s.fields,
                           s.composition, s.files, s.objects, s.firstFolder, s.firstCompItem)));
    const tagKeyFrame key;
    EXPECT_TRUE(in_order(addresses(key.frame, key.rotation, key.position, key.fov, key.targetDistance)));
    const CLight light;
    EXPECT_TRUE(in_order(addresses(light.prev, light.next, light.keys, light.name, light.keyCount,
                                   light.layerH, light.isNull, light.lightType, light.shadowType, light.color,
                                   light.intensity, light.coneAngle)));
    const CCamera camera;
    EXPECT_TRUE(in_order(addresses(camera.isNull, camera.zoom)));
}

TEST(Layout, VirtualSlotsInOrder) {
    EXPECT_EQ(virtual_slot(&ASCIIParser::CompareIdent), 0U);
    EXPECT_EQ(virtual_slot(&ASCIIParser::CompareOperator), 1U);
    EXPECT_EQ(virtual_slot(&CSceneObject::Add), 2U) << "after the two destructors";
    EXPECT_EQ(virtual_slot(&CSceneObject::Load), 3U);
}

}  // namespace
