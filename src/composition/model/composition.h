#pragma once

#include "composition/model/double_linked_list.h"
#include "host/host_interface.h"

class AEGP_SuiteHandler;
class ASCIIParser;
class CComposition;
struct tagProjectSettings;

/// Blend words: the values of `blendMode`.
enum BlendMode : A_long { kBlendNormal = 0, kBlendAdd = 1, kBlendMultiply = 2 };
/// Alpha words: the values of `alphaMode`.
enum AlphaMode : A_long { kAlphaPremultiplied = 0, kAlphaStraight = 1 };
/// Kinds of children: the values of CCompoChild::type.
enum CompoChildType : A_long { kChildFile = 0, kChildComposition = 1 };

/// One footage entry of a composition file.
class CFileItem {
  public:
    CFileItem() = default;
    ~CFileItem();
    CFileItem(const CFileItem&) = delete;
    CFileItem& operator=(const CFileItem&) = delete;

    /// Reads what follows FILE or FSEQ in a composition: blend word, alpha word, path. Returns 1, or 0 on the
    /// first failure. The caller sets `isSequence`.
    int Read(ASCIIParser& p);

    /// Tells the host how to interpret the footage of this entry, which was added to the project as `item`.
    /// `footage` is not used; `path` is the path that the footage was made from. Returns the host's error
    /// code.
    A_Err InterpretFootage(AEGP_SuiteHandler* suites, AEGP_FootageH footage, AEGP_ItemH item,
                           tagProjectSettings* settings, char* path);

    A_long blendMode = kBlendNormal;  ///< how the layer is composited; unused for top-level footage
    A_long alphaMode = kAlphaPremultiplied;
    char* path = nullptr;   ///< full path of the file, from array-new, owned; null when it could not be read
    A_long isSequence = 0;  ///< 1 for FSEQ, a numbered sequence of images
};

/// One entry of a composition, or one top-level footage entry. Delete it with DeleteCompoChild.
class CCompoChild : public CListItem {
  public:
    /// Makes this a footage entry: creates an empty CFileItem and returns it; null when out of memory.
    CFileItem* CreateFile();
    /// Makes this a nested composition: creates an empty CComposition and returns it; null when out of
    /// memory.
    CComposition* CreateComposition();

    A_long type = kChildFile;
    /// Owned; `type` says which. Null in the sentinels of a list.
    union {
        CFileItem* file = nullptr;
        CComposition* composition;
    } item;
};

/// Deletes `child` and everything below it. The child must not be in a list.
void DeleteCompoChild(CCompoChild* child);

/// One composition of the file: a name, a blend mode and, in file order, the entries that become its layers.
class CComposition {
  public:
    CComposition() = default;
    /// Deletes every child and with it the tree below.
    ~CComposition();
    CComposition(const CComposition&) = delete;
    CComposition& operator=(const CComposition&) = delete;

    /// Appends a new footage entry and returns it; null when out of memory. Owned by `children`.
    CFileItem* AddFile();
    /// Appends a new composition whose parent is this one and returns it; null when out of memory. Owned by
    /// `children`.
    CComposition* AddComposition();

    /// Reads what follows the word COMPOSITION: blend word, name, and the optional block with everything
    /// nested in it. Returns 1, or 0 on the first failure; what was read until then stays in the tree.
    int ReadComposition(ASCIIParser& p);

    /// Builds this composition and everything below it in the host: a folder in `parent_folder`, the
    /// composition, footage and layers. Returns 0, or the host's error code of the first call that failed.
    int CreateComposition(AEGP_SuiteHandler* suites, AEGP_ItemH parent_folder, tagProjectSettings* settings);

    char* name = nullptr;             ///< from array-new, owned
    A_long blendMode = kBlendNormal;  ///< how the composition is composited as a layer of its parent
    CDoubleLinkedList<CCompoChild> children;
    CComposition* parent = nullptr;     ///< null for the root
    AEGP_ItemH itemH = nullptr;         ///< never set or read
    AEGP_CompH compH = nullptr;         ///< the host's composition, once built
    AEGP_ItemH parentFolder = nullptr;  ///< the host's folder in which this composition's folder is
};
