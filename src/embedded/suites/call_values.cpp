#include "embedded/suites/call_values.h"

#include "embedded/layer_model.h"
#include "embedded/suites/host_call.h"

namespace embedded {

void CallScope::write_line() {
    const FunctionInfo& function = function_info(function_);
    const SuiteInfo& suite = suite_info(function.suite);
    Json line = Json::object();
    line["n"] = session_.current_call.n;
    line["suite"] = suite.name;
    line["version"] = suite.version(session_.options.generation);
    line["function"] = function.name;
    line["args"] = line_->args.take();
    line["out"] = line_->out.take();
    line["result"] = std::move(line_->result);
    session_.log.end(session_.current_call.n, line);
}

Json json_stream_value(const Session& session, const AEGP_StreamValue* value) {
    if (value == nullptr) {
        return {};
    }
    Json record = Json::object();
    record["stream"] = value->stream == nullptr ? Json() : Json(session.handles.text(value->stream));
    // Which members count is the stream's to say; of a stream unknown all four are shown.
    StreamShape shape = StreamShape::color;
    const HandleTable::Token* token = session.handles.find(value->stream);
    if (token != nullptr && token->kind == HandleKind::stream) {
        const Session::StreamRef& ref = session.stream_refs[Project::index(token->id)];
        shape = stream_shape(session.project.layer(ref.layer), ref.kind).value_or(StreamShape::color);
    }
    record["value"] = json_components(components_of(value->value, shape), shape);
    return record;
}

}  // namespace embedded
