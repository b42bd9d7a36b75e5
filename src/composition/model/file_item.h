#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;
class ASCIIParser;
struct FootagePath;
struct TextPosition;
struct tagProjectSettings;

/// Blend words: the values of `blendMode`.
enum BlendMode : A_long { kBlendNormal = 0, kBlendAdd = 1, kBlendMultiply = 2 };
/// Alpha words: the values of `alphaMode`.
enum AlphaMode : A_long { kAlphaPremultiplied = 0, kAlphaStraight = 1 };

/// One footage entry of a composition file.
class CFileItem {
  public:
    CFileItem() = default;
    ~CFileItem();
    CFileItem(const CFileItem&) = delete;
    CFileItem& operator=(const CFileItem&) = delete;

    /// Reads what follows FILE or FSEQ in a composition: blend word, alpha word, path. Returns 1, or 0 on the
    /// first failure. `isSequence` is the caller's to set.
    int Read(ASCIIParser& p);
    /// Reads what follows FILE or FSEQ at the top level: the mark "<->", alpha word, path. Returns 1, or 0 on
    /// the first failure; a path that cannot be read is none here, `path` is null then.
    int ReadTopLevel(ASCIIParser& p);

    /// Tells the host how to read the footage of this entry, which was added to the project as `item`.
    /// `footage` is not used; `path` is the path from which the footage was made. Returns the host's error
    /// code.
    A_Err InterpretFootage(AEGP_SuiteHandler* suites, AEGP_FootageH footage, AEGP_ItemH item,
                           tagProjectSettings* settings, char* path);

    A_long blendMode = kBlendNormal;  ///< how the layer is put over those below; unused for top-level footage
    A_long alphaMode = kAlphaPremultiplied;
    char* path = nullptr;   ///< full path of the file, from array-new, owned; null when it could not be read
    A_long isSequence = 0;  ///< 1 for FSEQ, a numbered sequence of images

  private:
    FootagePath ReadPath(ASCIIParser& p, const TextPosition& at, bool top_level);
};
