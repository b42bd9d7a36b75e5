#include "model_text.h"

#include <bit>
#include <cstdint>
#include <vector>

#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"

namespace {

class Writer {
  public:
    Writer& operator<<(A_long number) {
        text_ += std::to_string(number) + ' ';
        return *this;
    }
    Writer& operator<<(float number) {
        return *this << static_cast<A_long>(std::bit_cast<std::int32_t>(number));
    }
    Writer& operator<<(const char* string) {
        text_ += string == nullptr ? "none" : '"' + std::string(string) + '"';
        return *this;
    }
    Writer& operator<<(const CFileItem& file) {
        return *this << "file" << file.isSequence << file.blendMode << file.alphaMode << file.path;
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

template <class T>
const T* first_of(const CDoubleLinkedList<T>& list) {
    return list.head.next == &list.tail ? nullptr : static_cast<const T*>(list.head.next);
}

template <class T>
const T* next_of(const CDoubleLinkedList<T>& list, const T* node) {
    return node->next == &list.tail ? nullptr : static_cast<const T*>(node->next);
}

// An explicit stack instead of recursion: compositions nest deep.
void write_compositions(Writer& out, const CComposition& root) {
    std::vector<const CComposition*> to_write{&root};
    for (std::size_t i = 0; i < to_write.size(); ++i) {
        const CComposition& composition = *to_write[i];
        out << "composition" << composition.name << composition.blendMode;
        for (const CCompoChild* child = first_of(composition.children); child != nullptr;
             child = next_of(composition.children, child)) {
            if (child->type == kChildComposition) {
                out << "nested";
                to_write.push_back(child->item.composition);
            } else {
                out << *child->item.file;
            }
        }
    }
}

void write_object(Writer& out, const CSceneObject& object) {
    out << "object" << object.name << object.isNull;
    if (const auto* light = dynamic_cast<const CLight*>(&object)) {
        out << light->lightType << light->shadowType << light->color[0] << light->color[1] << light->color[2]
            << light->intensity << light->coneAngle;
    }
    for (A_long i = 0; i < object.keyCount; ++i) {
        const tagKeyFrame& key = *object.keys[i];
        out << key.frame << key.fov << key.targetDistance;
        for (int axis = 0; axis < 3; ++axis) {
            out << key.position[axis] << key.rotation[axis];
        }
    }
}

}  // namespace

std::string model_text(const tagProjectSettings& settings) {
    Writer out;
    out << settings.width << settings.height << settings.from << settings.to << settings.range << settings.fps
        << settings.aspect << settings.local << settings.fields;
    write_compositions(out, settings.composition);
    for (const CCompoChild* child = first_of(settings.files); child != nullptr;
         child = next_of(settings.files, child)) {
        out << *child->item.file;
    }
    for (const CSceneObject* object = first_of(settings.objects); object != nullptr;
         object = next_of(settings.objects, object)) {
        write_object(out, *object);
    }
    return out.text();
}
