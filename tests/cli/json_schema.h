#pragma once

#include <string>

#include "support/child_process.h"
#include "support/temporary_folder.h"

/// What is wrong with the document by docs/schema/NAME; empty if it is valid. Python's validator says it.
inline std::string schema_faults(const std::string& name, const std::string& document) {
    const TemporaryFolder folder;
    const ProcessResult run = run_process(
        {"python3", "-W", "ignore", "-c",
         "import json, sys, jsonschema; v = jsonschema.Draft202012Validator(json.load(open(sys.argv[1]))); "
         "print(*(e.json_path + ': ' + e.message for e in v.iter_errors(json.load(open(sys.argv[2])))), "
         "sep='\\n', end='')",
         VXR_PROJECT_DIR "/docs/schema/" + name, folder.write("document.json", document)});
    return run.out + run.err;
}
