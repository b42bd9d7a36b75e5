#pragma once

#include <string>
#include <vector>

#include "composition/model/composition.h"
#include "composition/read/read_observer.h"

/// "line:column@offset"
inline std::string place(const diagnostic::Place& at) {
    return std::to_string(at.line.value_or(-1)) + ":" + std::to_string(at.column.value_or(-1)) + "@" +
           std::to_string(at.offset_bytes.value_or(-1));
}
inline std::string place(const TextPosition& at) {
    return std::to_string(at.line) + ":" + std::to_string(at.column) + "@" + std::to_string(at.offset_bytes);
}

/// Records every event as one text.
class RecordingObserver : public ReadObserver {
  public:
    void on_failure(const diagnostic::Diagnostic& error) override {
        std::string text = "failure " + place(error.at) + " " + error.code.name() + ": " + error.reason;
        for (const std::string& block : error.within) {
            text += " in " + block;
        }
        events.push_back(text);
        errors.push_back(error);
    }
    void on_keyword(std::string_view keyword, const TextPosition& at) override {
        events.push_back("keyword " + place(at) + " " + std::string(keyword));
    }
    void on_value(const ReadValue& value) override {
        events.push_back("value " + place(value.at) + " " + std::string(value.keyword) + "[" +
                         std::to_string(value.index) + "] " + std::string(value.text) + " = " +
                         std::to_string(value.kept));
    }
    void on_block_begin(const ReadBlock& block) override {
        events.push_back("begin " + place(block.at) + " " + block_word(block.kind) + " " +
                         place(block.name_at) + " " + std::string(block.name()) + " depth " +
                         std::to_string(blocks().size()));
    }
    void on_block_end(const ReadBlock& block, const TextPosition& at) override {
        events.push_back("end " + place(at) + " " + block_word(block.kind) + " " + std::string(block.name()));
    }
    void on_footage(const ReadFootage& footage) override {
        events.push_back("footage " + place(footage.at) +
                         (footage.file.isSequence != 0 ? " sequence" : " file") +
                         (footage.top_level ? " top" : "") + " " + place(footage.path_at) + " " +
                         std::string(footage.written) + (footage.opens_as_written ? " opens" : "") +
                         (footage.problem ? std::string(" ") + code_info(*footage.problem).name : ""));
        resolved.emplace_back(footage.file.path == nullptr ? "(null)" : footage.file.path);
    }
    void on_ignored(std::string_view text, const TextPosition& at) override {
        events.push_back("ignored " + place(at) + " " + std::string(text));
    }
    void on_end(const TextPosition& at, bool at_end_of_file) override {
        events.push_back("done " + place(at) + (at_end_of_file ? " end of file" : " text follows"));
    }

    std::vector<std::string> events;
    std::vector<std::string> resolved;
    std::vector<diagnostic::Diagnostic> errors;
};
