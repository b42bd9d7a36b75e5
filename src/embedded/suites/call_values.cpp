#include "embedded/suites/call_values.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "embedded/json_values.h"
#include "embedded/layer_model.h"
#include "embedded/suites/host_call.h"

namespace embedded {
namespace {

Json json_extension(const AEIO_FileExt& extension) {
    return json_text({&extension.pad, sizeof extension});
}

Json json_file_kind(const PFILE_FileKind& kind) {
    return Json{{"type", json_code(kind.type)}, {"creator", json_code(kind.creator)}};
}

Json json_module_info(const AEIO_ModuleInfo& info) {
    Json read_kinds = Json::array();
    Json aux_extensions = Json::array();
    // First the file types, then the extensions; the module does not fill the entries beyond both.
    for (int i = 0; i < kMaxFileKinds && i < info.num_filetypes + info.num_extensions; ++i) {
        read_kinds.push_back(i < info.num_filetypes ? json_file_kind(info.read_kinds[i].mac)
                                                    : json_extension(info.read_kinds[i].ext));
    }
    for (int i = 0; i < kMaxFileKinds && i < info.num_aux_extensions; ++i) {
        const AEIO_AuxExt& aux = info.aux_extensions[i];
        aux_extensions.push_back(Json{{"extension", json_text({aux.extension, sizeof aux.extension})},
                                      {"type", json_code(aux.type)},
                                      {"creator", json_code(aux.creator)}});
    }
    const auto name_length =
        static_cast<std::size_t>(std::find(info.name, std::end(info.name), '\0') - info.name);
    return Json{{"signature", json_code(info.signature)},
                {"name", json_text({info.name, name_length})},
                {"flags", info.flags},
                {"flags2", info.flags2},
                {"max_width", info.max_width},
                {"max_height", info.max_height},
                {"num_filetypes", info.num_filetypes},
                {"num_extensions", info.num_extensions},
                {"num_clips", info.num_clips},
                {"create_kind", json_file_kind(info.create_kind)},
                {"create_ext", json_extension(info.create_ext)},
                {"read_kinds", read_kinds},
                {"num_aux_extensions", info.num_aux_extensions},
                {"aux_extensions", aux_extensions}};
}

/// Null for a null pointer, else what `to_json(value)` makes of what it points to.
template <class Value, class ToJson>
Json json_or_null(const Value* value, const ToJson& to_json) {
    if (value == nullptr) {
        return {};
    }
    return to_json(*value);
}

}  // namespace

CallValues::CallValues(const Session& session) : session_(session) {}
CallValues::~CallValues() = default;

Json& CallValues::at(const char* name) {
    if (!values_) {
        values_ = std::make_unique<Json>(Json::object());
    }
    return (*values_)[name];
}

Json CallValues::take() {
    const auto taken = std::move(values_);
    return taken ? std::move(*taken) : Json::object();
}

void CallValues::signed_integer(const char* name, std::int64_t value) {
    at(name) = value;
}

void CallValues::unsigned_integer(const char* name, std::uint64_t value) {
    at(name) = value;
}

void CallValues::number(const char* name, double value) {
    at(name) = json_number(value);
}

void CallValues::flag(const char* name, A_Boolean value) {
    at(name) = value;
}

void CallValues::text(const char* name, const A_char* value) {
    at(name) = value == nullptr ? Json() : json_text(std::string_view(value));
}

void CallValues::text(const char* name, const A_UTF16Char* value) {
    at(name) = value == nullptr ? Json() : json_text(Utf16View(value));
}

void CallValues::bytes(const char* name, const void* value, std::size_t size_bytes) {
    at(name) = value == nullptr ? Json() : json_bytes({static_cast<const std::uint8_t*>(value), size_bytes});
}

void CallValues::time(const char* name, const A_Time* value) {
    at(name) = json_or_null(value, json_time);
}

void CallValues::ratio(const char* name, const A_Ratio* value) {
    at(name) = json_or_null(value, json_ratio);
}

void CallValues::point(const char* name, const A_FloatPoint& value) {
    at(name) = Json{{"x", json_number(value.x)}, {"y", json_number(value.y)}};
}

void CallValues::handle(const char* name, const void* value) {
    at(name) = value == nullptr ? Json() : Json(session_.handles.text(value));
}

void CallValues::present(const char* name, bool there) {
    at(name) = there ? Json(true) : Json();
}

void CallValues::interpretation(const char* name, const AEGP_FootageInterp* value) {
    at(name) = json_or_null(value, json_interpretation);
}

void CallValues::sequence_options(const char* name, const AEGP_FileSequenceImportOptions* value) {
    at(name) = json_or_null(value, [](const AEGP_FileSequenceImportOptions& options) {
        return Json{{"all_in_folder", options.all_in_folder},
                    {"force_alphabetical", options.force_alphabetical},
                    {"start_frame", options.start_frame},
                    {"end_frame", options.end_frame}};
    });
}

void CallValues::alpha_label(const char* name, const AEIO_AlphaLabel* value) {
    at(name) = json_or_null(value, json_alpha_label);
}

void CallValues::transfer_mode(const char* name, const AEGP_LayerTransferMode* value) {
    at(name) = json_or_null(value, json_transfer_mode);
}

void CallValues::stream_value(const char* name, const AEGP_StreamValue* value) {
    at(name) = json_or_null(value, [this](const AEGP_StreamValue& given) {
        Json record = Json::object();
        record["stream"] = given.stream == nullptr ? Json() : Json(session_.handles.text(given.stream));
        // The stream decides which members count; for an unknown stream all four are shown.
        StreamShape shape = StreamShape::color;
        const HandleTable::Token* token = session_.handles.find(given.stream);
        if (token != nullptr && token->kind == HandleKind::stream) {
            const Session::StreamRef& ref = session_.stream_refs[Project::index(token->id)];
            shape = stream_shape(session_.project.layer(ref.layer), ref.kind).value_or(StreamShape::color);
        }
        record["value"] = json_components(components_of(given.value, shape), shape);
        return record;
    });
}

void CallValues::module_info(const char* name, const AEIO_ModuleInfo* value) {
    at(name) = json_or_null(value, json_module_info);
}

void CallValues::file_types(const char* name, const AEIO_FileKind* kinds, A_long count) {
    Json list;
    if (kinds != nullptr) {
        list = Json::array();
        for (A_long i = 0; i < count; ++i) {
            list.push_back(json_file_kind(kinds[i].mac));
        }
    }
    at(name) = std::move(list);
}

void CallValues::extensions(const char* name, const AEIO_FileKind* kinds, A_long count) {
    Json list;
    if (kinds != nullptr) {
        list = Json::array();
        for (A_long i = 0; i < count; ++i) {
            list.push_back(json_extension(kinds[i].ext));
        }
    }
    at(name) = std::move(list);
}

void CallValues::record(const char* name, CallValues& members) {
    at(name) = members.take();
}

void CallScope::write_line() {
    const FunctionInfo& function = function_info(function_);
    const SuiteInfo& suite = suite_info(suite_);
    Json line = Json::object();
    line["n"] = session_.current_call.n;
    line["suite"] = suite.name;
    line["version"] = suite.version(session_.options.generation);
    line["function"] = function.name;
    line["args"] = line_->args.take();
    line["out"] = line_->out.take();
    line["result"] = line_->result.take()[kResult];
    session_.log.end(session_.current_call.n, line.dump());
}

}  // namespace embedded
