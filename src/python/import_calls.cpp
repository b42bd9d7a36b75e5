#include "python/import_calls.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/job/relinked_copy.h"
#include "cli/project/host_setup.h"
#include "cli/project/import_run.h"
#include "cli/project/project_labels.h"
#include "cli/report/diagnostic_json.h"
#include "embedded/host.h"
#include "embedded/project_json.h"
#include "host/byte_encoding.h"

namespace python {
namespace {

using embedded::Json;

StreamColumns stream_columns(const embedded::Layer& layer, const embedded::Stream& stream) {
    StreamColumns columns;
    columns.layer = layer.id;
    columns.kind = stream.kind;
    columns.components = static_cast<std::size_t>(embedded::component_count(stream.shape));
    const auto add = [&columns](std::vector<double>& to, const embedded::StreamComponents& value) {
        to.insert(to.end(), value.begin(), value.begin() + static_cast<std::ptrdiff_t>(columns.components));
    };
    add(columns.fixed_value, stream.value);
    columns.times.reserve(stream.keyframes.size());
    columns.values.reserve(stream.keyframes.size() * columns.components);
    for (const embedded::Keyframe& key : stream.keyframes) {
        columns.times.push_back(cli::seconds_of(key.time));
        add(columns.values, key.value);
    }
    return columns;
}

// The keys of all layers, in the order in which the document has the streams; the project keeps none.
std::vector<StreamColumns> taken_keys(embedded::Project& project) {
    std::vector<StreamColumns> taken;
    for (const embedded::Composition& composition : project.compositions) {
        for (const embedded::Id id : composition.layers) {
            embedded::Layer& layer = project.layers.at(embedded::Project::index(id));
            for (auto& [kind, stream] : layer.streams) {
                taken.push_back(stream_columns(layer, stream));
                stream.keyframes = {};
            }
        }
    }
    return taken;
}

void add_labels(Json& document, const embedded::Project& project) {
    for (std::size_t i = 0; i < project.footage.size(); ++i) {
        document["footage"][i]["alpha"] = cli::alpha_label(project.footage[i]);
        document["footage"][i]["fields"] = cli::fields_label(project.footage[i].interpretation);
    }
    for (std::size_t i = 0; i < project.compositions.size(); ++i) {
        Json& layers = document["compositions"][i]["layers"];
        for (std::size_t k = 0; k < project.compositions[i].layers.size(); ++k) {
            const embedded::Layer& layer = project.layer(project.compositions[i].layers[k]);
            layers[k]["blend"] = cli::blend_label(layer.transfer);
            layers[k]["label"] = cli::layer_label(project, layer);
        }
    }
}

bool& has_host() {
    thread_local bool has = false;
    return has;
}

}  // namespace

HostTurn::HostTurn() {
    if (has_host()) {
        throw std::runtime_error("progress and cancel were called within an import and cannot import");
    }
    static std::mutex mutex;
    lock_ = std::unique_lock(mutex);
    has_host() = true;
}

HostTurn::~HostTurn() {
    has_host() = false;
}

ImportAnswer import_scene(const ImportRequest& request, const Watch& watch) {
    const cli::FoundScene scene(request.path, request.choices, reading_watch(watch));
    const cli::FoundBundle bundle = cli::find_bundle(request.bundle);
    const embedded::HostOptions options = cli::host_of_kind(request.host);

    const HostTurn turn;
    embedded::Host host(options);
    const cli::ImportRun run = cli::import_scene(host, options, bundle, scene.reading());
    const std::optional<ByteEncoding> encoding = parse_byte_encoding(request.name_encoding);
    embedded::Project project =
        encoding ? cli::with_decoded_names(host.project(), *encoding) : host.project();

    ImportAnswer answer;
    answer.streams = taken_keys(project);
    Json document = cli::import_document(project, host.conformance(), run);
    add_labels(document, project);
    const std::optional<diagnostic::Diagnostic>& error = scene.original().error;
    document["error"] = error ? cli::diagnostic_json(*error) : Json();
    answer.document = document.dump();
    return answer;
}

bool is_host(const std::string& text) {
    return embedded::parse_host(text).has_value();
}

bool is_name_encoding(const std::string& text) {
    return parse_byte_encoding(text).has_value();
}

}  // namespace python
