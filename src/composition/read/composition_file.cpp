#include "composition/read/composition_file.h"

#include <memory>
#include <new>

#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/read_footage.h"
#include "composition/read/read_report.h"
#include "composition/read/read_settings.h"
#include "composition/read/read_values.h"

namespace {

int read_header(ASCIIParser& p) {
    if (!is_word(p, "VORTAN")) {
        return fail(p, ReadErrorCode::bad_header, "VORTAN at the beginning of the file");
    }
    p.nextsym(0);
    // Deliberately accepts a number token too; its text is compared either way.
    if ((p.sym != kTokenIdentifier && p.sym != kTokenNumber) || Compare(p.text, "XR") != 0) {
        return fail(p, ReadErrorCode::bad_header, "XR after VORTAN");
    }
    p.nextsym(0);
    return is_word(p, "COMPOSITION") ? 1 : fail(p, ReadErrorCode::bad_header, "COMPOSITION after VORTAN XR");
}

// The current token is FILE or FSEQ.
int read_top_level_entry(ASCIIParser& p, tagProjectSettings& settings) {
    std::unique_ptr<CCompoChild> child(new (std::nothrow) CCompoChild);
    CFileItem* const file = child == nullptr ? nullptr : child->CreateFile();
    if (file == nullptr) {
        return fail(p, ReadErrorCode::out_of_memory, "a footage entry that fits into memory");
    }
    settings.files.AddAtTail(child.release());
    file->isSequence = is_word(p, "FSEQ") ? 1 : 0;
    return read_top_level_footage(p, *file);
}

// A new object for the current token, or null when the token begins no object. `fits` is false when out of
// memory.
CSceneObject* new_object(const ASCIIParser& p, bool& fits) {
    CSceneObject* object = nullptr;
    if (is_word(p, "CAMERA")) {
        object = new (std::nothrow) CCamera;
    } else if (is_word(p, "LIGHT")) {
        object = new (std::nothrow) CLight;
    } else if (is_word(p, "NULL")) {
        object = new (std::nothrow) CNull;
    } else {
        fits = true;
        return nullptr;
    }
    fits = object != nullptr;
    return object;
}

// Top-level footage. `complete` says whether the file ended with it; otherwise the current token is the word
// after it.
int read_top_level_section(ASCIIParser& p, tagProjectSettings& settings, bool& complete) {
    for (;;) {
        if (p.nextsym(0) != kTokenIdentifier) {
            complete = p.sym == kTokenNone && p.status == kStatusEndOfInput;
            return complete ? 1
                            : fail(p, ReadErrorCode::expected_section,
                                   "FILE, FSEQ, CAMERA, LIGHT, NULL or the end of the file");
        }
        if (!is_word(p, "FILE") && !is_word(p, "FSEQ")) {
            complete = false;
            return 1;
        }
        if (read_top_level_entry(p, settings) == 0) {
            return 0;
        }
    }
}

// Scene objects. The current token is the first word after the footage and must begin an object. After an
// object, any token that begins no other one deliberately ends the file: later exporters may write more
// sections there.
int read_objects(ASCIIParser& p, tagProjectSettings& settings) {
    bool first = true;
    for (;;) {
        bool fits = true;
        CSceneObject* const object = new_object(p, fits);
        if (!fits) {
            return fail(p, ReadErrorCode::out_of_memory, "an object that fits into memory");
        }
        if (object == nullptr) {
            return first ? fail(p, ReadErrorCode::expected_section,
                                "FILE, FSEQ, CAMERA, LIGHT, NULL or the end of the file")
                         : 1;
        }
        first = false;
        settings.objects.AddAtHead(object);
        if (object->Load(p) == 0) {
            return 0;
        }
        p.nextsym(0);
    }
}

}  // namespace

int read_composition_file(ASCIIParser& p, tagProjectSettings& settings) {
    if (read_header(p) == 0 || read_settings(p, settings) == 0 ||
        settings.composition.ReadComposition(p) == 0) {
        return 0;
    }
    bool complete = false;
    if (read_top_level_section(p, settings, complete) == 0 || (!complete && read_objects(p, settings) == 0)) {
        return 0;
    }
    if (p.status == kStatusReadFailed) {
        // Half a file never passes for a whole one, wherever reading stopped.
        return fail(p, ReadErrorCode::read_failed, "the rest of the file");
    }
    if (ReadObserver* const observer = p.Observer()) {
        observer->on_end(p.TokenStart(), p.Cut() == TokenCut::end_of_input);
    }
    return 1;
}
