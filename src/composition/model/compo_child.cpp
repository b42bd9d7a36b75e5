#include "composition/model/compo_child.h"

#include <new>

#include "composition/model/composition.h"
#include "composition/model/file_item.h"

CFileItem* CCompoChild::CreateFile() {
    type = kChildFile;
    item.file = new (std::nothrow) CFileItem;
    return item.file;
}

CComposition* CCompoChild::CreateComposition() {
    type = kChildComposition;
    item.composition = new (std::nothrow) CComposition;
    return item.composition;
}

void DeleteCompoChild(CCompoChild* child) {
    if (child->type == kChildComposition) {
        delete child->item.composition;
    } else {
        delete child->item.file;
    }
    delete child;
}
