#include "composition/model/project_settings.h"

namespace {

void DeleteSceneObjects(CDoubleLinkedList<CSceneObject>& objects) {
    while (const CSceneObject* const object = objects.RemoveFirst()) {
        delete object;
    }
}

}  // namespace

// The lists, as members, are destroyed after the body, followed by the root composition.
tagProjectSettings::~tagProjectSettings() {
    while (CCompoChild* const child = files.RemoveFirst()) {
        DeleteCompoChild(child);
    }
    DeleteSceneObjects(objects);
}
