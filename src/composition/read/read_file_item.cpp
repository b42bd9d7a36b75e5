#include "composition/model/file_item.h"

#include "composition/read/ascii_parser.h"
#include "composition/read/read_filename.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"

CFileItem::~CFileItem() {
    delete[] path;
}

int CFileItem::Read(ASCIIParser& p) {
    const TextPosition at = p.TokenStart();
    if (read_blend_mode(p, blendMode) == 0 || read_alpha_mode(p, alphaMode) == 0) {
        return 0;
    }
    const FootagePath read = ReadPath(p, at, false);
    return read.problem ? fail_path(p, read) : 1;
}

int CFileItem::ReadTopLevel(ASCIIParser& p) {
    const TextPosition at = p.TokenStart();
    // "<->" comes as three tokens: the one in the middle is a number without a digit.
    const bool opened = p.nextsym(0) == kTokenOther && Compare(p.text, "<") == 0;
    const bool lined = opened && p.nextsym(0) == kTokenNumber && Compare(p.text, "-") == 0;
    const bool closed = lined && p.nextsym(0) == kTokenOther && Compare(p.text, ">") == 0;
    if (!closed) {
        return fail(p, ReadErrorCode::expected_footage_mark, "<-> between FILE or FSEQ and the alpha word");
    }
    if (read_alpha_mode(p, alphaMode) == 0) {
        return 0;
    }
    // Deliberately without looking at the result: an entry whose path could not be read stays, and reading
    // goes on behind it.
    ReadPath(p, at, true);
    return 1;
}

FootagePath CFileItem::ReadPath(ASCIIParser& p, const TextPosition& at, bool top_level) {
    FootagePath read = read_footage_path(p, &path);
    if (ReadObserver* const observer = p.Observer()) {
        observer->on_footage({isSequence != 0, top_level, at, read.at,
                              read.written == nullptr ? "" : read.written.get(), path, read.opens_as_written,
                              read.problem});
    }
    return read;
}
