#pragma once

#include "composition/model/composition.h"
#include "composition/model/double_linked_list.h"
#include "composition/model/scene_object.h"
#include "host/host_interface.h"

/// Words after FIELDS: the values of tagProjectSettings::fields.
enum FieldOrder : A_long { kFieldsNone = 0, kFieldsEven = 1, kFieldsOdd = 2 };

/// Everything read from one composition file. Owns everything below it.
struct tagProjectSettings {
    tagProjectSettings() = default;
    ~tagProjectSettings();
    tagProjectSettings(const tagProjectSettings&) = delete;
    tagProjectSettings& operator=(const tagProjectSettings&) = delete;

    A_long width = 0;     ///< pixels
    A_long height = 0;    ///< pixels
    A_long from = 0;      ///< first frame; not checked against `to` and `range`
    A_long to = 0;        ///< last frame
    A_long range = 0;     ///< total number of frames
    A_long fps = 0;       ///< frames per second
    float aspect = 1.0F;  ///< pixel aspect ratio
    A_long local = 0;     ///< 1 when layers are offset by `from`
    A_long fields = kFieldsNone;
    CComposition composition;  ///< the root
    /// Top-level footage in file order, each a child of kind kChildFile. Filled at the tail.
    CDoubleLinkedList<CCompoChild> files;
    /// Cameras, lights and nulls, newest first. Filled at the head.
    CDoubleLinkedList<CSceneObject> objects;
    AEGP_ItemH firstFolder = nullptr;    ///< the folder of the first composition to be built
    AEGP_ItemH firstCompItem = nullptr;  ///< the item of that composition
};
