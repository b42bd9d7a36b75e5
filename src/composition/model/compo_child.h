#pragma once

#include "composition/model/double_linked_list.h"

class CComposition;
class CFileItem;

/// Kinds of children: the values of CCompoChild::type.
enum CompoChildType : A_long { kChildFile = 0, kChildComposition = 1 };

/// One entry of a composition, or one top-level footage entry. The entry itself is deleted with
/// DeleteCompoChild.
class CCompoChild : public CListItem {
  public:
    /// Makes this a footage entry: a new, empty CFileItem, which is returned; null when memory is short.
    CFileItem* CreateFile();
    /// Makes this a nested composition: a new, empty CComposition, which is returned; null when memory is
    /// short.
    CComposition* CreateComposition();

    A_long type = kChildFile;
    /// Owned; `type` says which. Null in the sentinels of a list.
    union {
        CFileItem* file = nullptr;
        CComposition* composition;
    } item;
};

/// Deletes `child` with everything below it; it must be in no list.
void DeleteCompoChild(CCompoChild* child);
