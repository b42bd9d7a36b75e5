#pragma once

#include "composition/model/compo_child.h"
#include "composition/model/double_linked_list.h"
#include "composition/model/file_item.h"
#include "host/host_interface.h"

class AEGP_SuiteHandler;
class ASCIIParser;
struct tagProjectSettings;

/// One composition of the file: a name, a blend mode and, in file order, the entries that become its layers.
class CComposition {
  public:
    CComposition() = default;
    /// Deletes every child and with it the tree below.
    ~CComposition();
    CComposition(const CComposition&) = delete;
    CComposition& operator=(const CComposition&) = delete;

    /// Appends a new footage entry and returns it; null when memory is short. Owned by `children`.
    CFileItem* AddFile();
    /// Appends a new composition whose parent is this one and returns it; null when memory is short. Owned by
    /// `children`.
    CComposition* AddComposition();

    /// Reads what follows the word COMPOSITION: blend word, name, and the optional block with everything
    /// nested in it. Returns 1, or 0 on the first failure; what was read until then stays in the tree.
    int ReadComposition(ASCIIParser& p);

    /// Builds this composition and everything below it in the host: a folder in `parent_folder`, the
    /// composition, footage and layers. Returns 0, or the host's error code of the first call that failed.
    int CreateComposition(AEGP_SuiteHandler* suites, AEGP_ItemH parent_folder, tagProjectSettings* settings);

    char* name = nullptr;             ///< from array-new, owned
    A_long blendMode = kBlendNormal;  ///< how the composition is put into its parent as a layer
    CDoubleLinkedList<CCompoChild> children;
    CComposition* parent = nullptr;  ///< null for the root
    AEGP_ItemH itemH = nullptr;      ///< kept, never used
    AEGP_CompH compH = nullptr;      ///< the host's composition, once built
    AEGP_ItemH parentFolder = nullptr;

  private:
    int ReadHead(ASCIIParser& p, bool& opens_block);
    int ReadFileEntry(ASCIIParser& p);
};
