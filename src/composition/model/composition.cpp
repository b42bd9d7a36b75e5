#include "composition/model/composition.h"

#include <memory>
#include <new>

CFileItem::~CFileItem() {
    delete[] path;
}

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

CComposition::~CComposition() {
    delete[] name;
    while (CCompoChild* const child = children.RemoveFirst()) {
        DeleteCompoChild(child);
    }
}

CFileItem* CComposition::AddFile() {
    std::unique_ptr<CCompoChild> child(new (std::nothrow) CCompoChild);
    CFileItem* const file = child == nullptr ? nullptr : child->CreateFile();
    if (file != nullptr) {
        children.AddAtTail(child.release());
    }
    return file;
}

CComposition* CComposition::AddComposition() {
    std::unique_ptr<CCompoChild> child(new (std::nothrow) CCompoChild);
    CComposition* const composition = child == nullptr ? nullptr : child->CreateComposition();
    if (composition != nullptr) {
        composition->parent = this;
        children.AddAtTail(child.release());
    }
    return composition;
}
