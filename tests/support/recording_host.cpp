#include "support/recording_host.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>

#include "host/plugin_globals.h"
#include "system/trigonometry.h"

namespace {

RecordingHost* current = nullptr;

// ---- arguments as text

std::string text(const void* handle) {
    return current->name_of(handle);
}
std::string text(const A_char* string) {
    return string == nullptr ? "null" : '"' + std::string(string) + '"';
}
std::string text(A_long number) {
    return std::to_string(number);
}
std::string text(A_u_long number) {
    return std::to_string(number);
}
std::string text(A_short number) {
    return std::to_string(number);
}
std::string text(A_Boolean number) {
    return std::to_string(number);
}
std::string text(double number) {
    return shortest(number);
}
std::string text(const A_Time* time) {
    return time == nullptr ? "null" : text(time->value) + "@" + text(time->scale);
}
std::string text(const A_Ratio* ratio) {
    return ratio == nullptr ? "null" : text(ratio->num) + "/" + text(ratio->den);
}
std::string text(const A_FloatPoint& point) {
    return "(" + text(point.x) + ", " + text(point.y) + ")";
}
std::string text(const AEGP_LayerTransferMode* mode) {
    return text(mode->mode) + "/" + text(mode->flags) + "/" + text(mode->track_matte);
}
std::string text(const AEGP_FileSequenceImportOptions* options) {
    if (options == nullptr)
        return "null";
    return "{" + text(options->all_in_folder) + ", " + text(options->force_alphabetical) + ", " +
           text(options->start_frame) + ", " + text(options->end_frame) + "}";
}

bool all_zero(const void* begin, std::size_t bytes) {
    const auto* first = static_cast<const unsigned char*>(begin);
    return std::all_of(first, first + bytes, [](unsigned char byte) { return byte == 0; });
}

std::size_t dimensions_of(const std::string& stream) {
    if (stream.ends_with("/color"))
        return 4;
    if (stream.ends_with("/position") || stream.ends_with("/anchor") || stream.ends_with("/orientation"))
        return 3;
    return stream.ends_with("/scale") ? 2 : 1;
}

// The numbers of a value, as many as its stream has; whatever else is wrong with the record shows in
// capitals.
std::string value_text(const AEGP_StreamValue* value, const std::string& stream) {
    const std::size_t dimensions = dimensions_of(stream);
    std::string out;
    for (std::size_t i = 0; i < dimensions; ++i)
        out += (i == 0 ? "" : ", ") + text(value->value.four_d.values[i]);
    if (!all_zero(&value->value.four_d.values[dimensions], (4 - dimensions) * sizeof(double)))
        out += " NOT CLEARED";
    if (current->name_of(value->stream) != stream)
        out += " FOR ANOTHER STREAM";
    return "[" + out + "]";
}

std::string stream_name(AEGP_LayerStream stream) {
    static const std::map<AEGP_LayerStream, std::string> kNames = {
        {0, "anchor"},     {1, "position"},  {2, "scale"},        {3, "zrotation"},
        {8, "xrotation"},  {9, "yrotation"}, {10, "orientation"}, {11, "zoom"},
        {16, "intensity"}, {17, "color"},    {18, "coneangle"},   {28, "shadows"},
    };
    const auto found = kNames.find(stream);
    return found == kNames.end() ? "stream" + std::to_string(stream) : found->second;
}

template <typename... Arguments>
std::string list(const Arguments&... arguments) {
    std::string out;
    ((out += (out.empty() ? "" : ", ") + text(arguments)), ...);
    return out;
}

// ---- AEGP Register Suite, AEGP File Import Manager Suite

A_Err register_death_hook(AEGP_PluginID id, AEGP_DeathHook hook, AEGP_DeathRefcon refcon) {
    current->registered_death_hook = hook;
    return current->call("RegisterDeathHook", list(id, static_cast<const void*>(refcon)));
}

A_Err register_io(AEGP_PluginID id, AEGP_IORefcon refcon, const AEIO_ModuleInfo* info,
                  const AEIO_FunctionBlock2* functions) {
    current->registered_module = *info;
    current->registered_functions = *functions;
    return current->call("RegisterIO", list(id, static_cast<const void*>(refcon), +info->name));
}

A_Err register_flavor(const A_char* name, AE_FIM_ImportFlavorRef* flavor) {
    const A_Err err = current->call("RegisterImportFlavor", list(name, *flavor));
    if (err == kHostErrorNone)
        *flavor = current->flavor;
    return err;
}

std::string kinds_text(A_long count, const AEIO_FileKind* kinds) {
    std::string out;
    for (A_long i = 0; i < count; ++i) {
        unsigned char bytes[sizeof(AEIO_FileKind)];
        std::memcpy(bytes, &kinds[i], sizeof bytes);
        for (const unsigned char byte : bytes) {
            constexpr const char* kDigits = "0123456789abcdef";
            out += {kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return out;
}

A_Err register_file_types(AE_FIM_ImportFlavorRef flavor, A_long type_count, const AEIO_FileKind* types,
                          A_long extension_count, const AEIO_FileKind* extensions) {
    return current->call("RegisterImportFlavorFileTypes",
                         list(flavor, type_count) + ", type " + text(types->mac.type) + " creator " +
                             text(types->mac.creator) + ", " + text(extension_count) + ", bytes " +
                             kinds_text(extension_count, extensions));
}

A_Err register_callbacks(AE_FIM_ImportFlavorRef flavor, AE_FIM_ImportFlags flags,
                         const AE_FIM_ImportCallbacks* callbacks) {
    current->registered_callbacks = *callbacks;
    return current->call("RegisterImportFlavorImportCallbacks",
                         list(flavor, flags, static_cast<const void*>(callbacks->refcon)));
}

// ---- AEGP Utility Suite, AEGP Persistent Data Suite

A_Err report_info(AEGP_PluginID id, const A_char* message) {
    if (id == RecordingHost::kPluginId)
        current->reports.emplace_back(message);
    return current->call("ReportInfo", list(id, message));
}

A_Err start_undo_group(const A_char* name) {
    const A_Err err = current->call("StartUndoGroup", list(name));
    if (err == kHostErrorNone)
        current->remember_open("undo group");
    return err;
}

A_Err end_undo_group() {
    current->remember_closed("undo group");
    return current->call("EndUndoGroup", "");
}

A_Err get_application_blob(AEGP_PersistentBlobH* blob) {
    return current->call("GetApplicationBlob", "", blob, "blob");
}

A_Err does_key_exist(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_Boolean* exists) {
    const A_Err err = current->call("DoesKeyExist", list(blob, section, key));
    if (err == kHostErrorNone)
        *exists = current->alpha_preference.has_value() ? 1 : 0;
    return err;
}

A_Err get_data(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_u_long size,
               const void* default_data, void* data) {
    const A_Err err = current->call("GetData", list(blob, section, key, size) + ", default " +
                                                   text(*static_cast<const A_u_char*>(default_data)));
    if (err == kHostErrorNone)
        *static_cast<A_u_char*>(data) = *current->alpha_preference;
    return err;
}

A_Err set_data(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_u_long size,
               const void* data) {
    const A_u_char value = *static_cast<const A_u_char*>(data);
    const A_Err err = current->call("SetData", list(blob, section, key, size, value));
    if (err == kHostErrorNone)
        current->alpha_preference = value;
    return err;
}

// ---- AEGP Proj Suite, AEGP Item Suite, AEGP Footage Suite

A_Err get_project(A_long index, AEGP_ProjectH* project) {
    return current->call("GetProjectByIndex", list(index), project, "project");
}

A_Err get_root_folder(AEGP_ProjectH project, AEGP_ItemH* folder) {
    return current->call("GetProjectRootFolder", list(project), folder, "root");
}

A_Err create_folder(const A_char* name, AEGP_ItemH parent, AEGP_ItemH* folder) {
    return current->call("CreateNewFolder", list(name, parent), folder, current->numbered("folder"));
}

A_Err new_footage(AEGP_PluginID id, const A_char* path, const AEGP_FootageLayerKey* key,
                  const AEGP_FileSequenceImportOptions* sequence, AEGP_InterpretationStyle style,
                  void* reserved, AEGP_FootageH* footage) {
    return current->call(
        "NewFootage",
        list(id, path, static_cast<const void*>(key), sequence, style, static_cast<const void*>(reserved)),
        footage, current->numbered("footage"));
}

A_Err new_placeholder(AEGP_PluginID id, const A_char* name, A_long width, A_long height,
                      const A_Time* duration, AEGP_FootageH* footage) {
    return current->call("NewPlaceholderFootage", list(id, name, width, height, duration), footage,
                         current->numbered("placeholder"));
}

A_Err add_footage(AEGP_FootageH footage, AEGP_ItemH folder, AEGP_ItemH* item) {
    return current->call("AddFootageToProject", list(footage, folder), item, "item(" + text(footage) + ")");
}

A_Err get_interpretation(AEGP_ItemH item, A_Boolean proxy, AEGP_FootageInterp* interpretation) {
    const bool cleared = all_zero(interpretation, sizeof *interpretation);
    const A_Err err =
        current->call("GetFootageInterpretation", list(item, proxy) + (cleared ? "" : " NOT CLEARED"));
    if (err == kHostErrorNone)
        *interpretation = current->interpretation;
    return err;
}

A_Err set_interpretation(AEGP_ItemH item, A_Boolean proxy, const AEGP_FootageInterp* given) {
    const AEGP_FootageInterp& i = *given;
    return current->call("SetFootageInterpretation",
                         list(item, proxy) + ", fields " + text(A_u_long{i.interlace.type}) + "/" +
                             text(A_u_long{i.interlace.order}) + ", alpha " + text(i.alpha.flags) +
                             ", aspect " + text(&i.pixel_aspect) + ", native " + text(i.native_fps) +
                             ", conform " + text(i.conform_fps) + ", motion " + text(i.motion));
}

// ---- AEGP Comp Suite, AEGP Layer Suite, AEGP Light Suite

A_Err get_comp_from_item(AEGP_ItemH item, AEGP_CompH* comp) {
    std::string name = text(item);
    if (name.starts_with("item("))
        name = name.substr(5, name.size() - 6);
    return current->call("GetCompFromItem", list(item), comp, name);
}

A_Err get_item_from_comp(AEGP_CompH comp, AEGP_ItemH* item) {
    return current->call("GetItemFromComp", list(comp), item, "item(" + text(comp) + ")");
}

A_Err create_comp(AEGP_ItemH folder, const A_char* name, A_long width, A_long height, const A_Ratio* aspect,
                  const A_Time* duration, const A_Ratio* rate, AEGP_CompH* comp) {
    return current->call("CreateComp", list(folder, name, width, height, aspect, duration, rate), comp,
                         current->numbered("comp"));
}

A_Err create_camera(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return current->call("CreateCameraInComp", list(name, center, comp), layer, current->numbered("camera"));
}

A_Err create_light(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return current->call("CreateLightInComp", list(name, center, comp), layer, current->numbered("light"));
}

A_Err create_null(const A_char* name, AEGP_CompH comp, const A_Time* duration, AEGP_LayerH* layer) {
    return current->call("CreateNullInComp", list(name, comp, duration), layer, current->numbered("null"));
}

A_Err set_layer_flag(AEGP_LayerH layer, AEGP_LayerFlags flag, A_Boolean value) {
    return current->call("SetLayerFlag", list(layer, flag, value));
}

A_Err set_in_point(AEGP_LayerH layer, AEGP_LTimeMode mode, const A_Time* in_point, const A_Time* duration) {
    return current->call("SetLayerInPointAndDuration", list(layer, mode, in_point, duration));
}

A_Err set_offset(AEGP_LayerH layer, const A_Time* offset) {
    return current->call("SetLayerOffset", list(layer, offset));
}

A_Err get_transfer_mode(AEGP_LayerH layer, AEGP_LayerTransferMode* mode) {
    const A_Err err = current->call("GetLayerTransferMode", list(layer));
    if (err == kHostErrorNone)
        *mode = current->transfer_mode;
    return err;
}

A_Err set_transfer_mode(AEGP_LayerH layer, const AEGP_LayerTransferMode* mode) {
    return current->call("SetLayerTransferMode", list(layer, mode));
}

A_Err is_add_layer_valid(AEGP_ItemH item, AEGP_CompH comp, A_Boolean* valid) {
    *valid = current->add_layer_valid;
    return current->call("IsAddLayerValid", list(item, comp));
}

A_Err add_layer(AEGP_ItemH item, AEGP_CompH comp, AEGP_LayerH* layer) {
    return current->call("AddLayer", list(item, comp), layer, current->numbered("layer"));
}

A_Err set_light_type(AEGP_LayerH layer, AEGP_LightType type) {
    return current->call("SetLightType", list(layer, type));
}

// ---- AEGP Stream Suite, AEGP Keyframe Suite, PF ANSI Suite

A_Err get_stream(AEGP_PluginID id, AEGP_LayerH layer, AEGP_LayerStream which, AEGP_StreamRefH* stream) {
    const std::string name = text(layer) + "/" + stream_name(which);
    *stream = nullptr;
    const A_Err err = current->call("GetNewLayerStream", list(id, layer, which), stream, name);
    if (err == kHostErrorNone && *stream != nullptr)
        current->remember_open(name);
    return err;
}

A_Err dispose_stream(AEGP_StreamRefH stream) {
    current->remember_closed(text(stream));
    return current->call("DisposeStream", list(stream));
}

A_Err set_stream_value(AEGP_PluginID id, AEGP_StreamRefH stream, AEGP_StreamValue* value) {
    return current->call("SetStreamValue", list(id, stream) + ", " + value_text(value, text(stream)));
}

A_Err start_add_keyframes(AEGP_StreamRefH stream, AEGP_AddKeyframesInfoH* info) {
    return current->call("StartAddKeyframes", list(stream), info, "keys(" + text(stream) + ")");
}

// Each track begins at another index, so that one track's index given to another shows.
A_long first_index(const std::string& keys) {
    A_long index = 0;
    for (const char c : keys)
        index = (index * 31 + c) % 89;
    return index * 100;
}

std::string stream_of(AEGP_AddKeyframesInfoH info) {
    const std::string keys = text(info);
    return keys.starts_with("keys(") ? keys.substr(5, keys.size() - 6) : keys;
}

A_Err add_keyframes(AEGP_AddKeyframesInfoH info, AEGP_LTimeMode mode, const A_Time* time, A_long* index) {
    const A_Err err = current->call("AddKeyframes", list(info, mode, time));
    if (err == kHostErrorNone)
        *index = first_index(text(info)) + current->key_counts[text(info)]++;
    return err;
}

A_Err set_add_keyframe(AEGP_AddKeyframesInfoH info, A_long index, const AEGP_StreamValue* value) {
    return current->call("SetAddKeyframe", list(info) + ", #" + text(index - first_index(text(info))) + ", " +
                                               value_text(value, stream_of(info)));
}

A_Err end_add_keyframes(A_Boolean add, AEGP_AddKeyframesInfoH info) {
    return current->call("EndAddKeyframes", list(add, info));
}

A_FpLong host_cos(A_FpLong x) {
    current->note("cos(" + text(x) + ")");
    return os::cosine(x);
}

A_FpLong host_sin(A_FpLong x) {
    current->note("sin(" + text(x) + ")");
    return os::sine(x);
}

// ---- the tables

const AEGP_RegisterSuite4 kRegister = {{}, register_death_hook, {}, register_io, {}};
const AEGP_FileImportManagerSuite2 kImports = {register_flavor, register_file_types, register_callbacks, {}};
const AEGP_UtilitySuite7 kUtility = {report_info, {}, start_undo_group, end_undo_group, {}};
const AEGP_PersistentDataSuite1 kPersistentData = {
    get_application_blob, {}, does_key_exist, {}, get_data, {}, set_data, {}};
const AEGP_ProjSuite5 kProj = {{}, get_project, {}, get_root_folder, {}};
const AEGP_ItemSuite10 kItem = {{}, create_folder, {}};
const AEGP_FootageSuite7 kFootage = {
    {}, new_footage, add_footage, {}, get_interpretation, set_interpretation, {}, new_placeholder, {}};
const AEGP_CompSuite9 kComp = {get_comp_from_item,
                               get_item_from_comp,
                               {},
                               create_camera,
                               create_light,
                               create_comp,
                               {},
                               create_null,
                               {}};
const AEGP_LayerSuite11 kLayer = {{},
                                  set_layer_flag,
                                  {},
                                  set_in_point,
                                  {},
                                  set_offset,
                                  {},
                                  get_transfer_mode,
                                  set_transfer_mode,
                                  is_add_layer_valid,
                                  add_layer,
                                  {}};
const AEGP_StreamSuite7 kStream = {{}, get_stream, {}, dispose_stream, {}, set_stream_value, {}};
const AEGP_KeyframeSuite3 kKeyframe = {
    {}, start_add_keyframes, add_keyframes, set_add_keyframe, end_add_keyframes};
const AEGP_LightSuite2 kLight = {{}, set_light_type};
const PF_ANSISuite1 kAnsi = {{}, host_cos, {}, host_sin, {}, nullptr, {}};
const PF_AEAdvAppSuite1 kAdvApp = {};

struct OfferedSuite {
    const char* name;
    A_long version;
    const void* table;
};

const OfferedSuite kOffered[] = {
    {"AEGP Register Suite", 4, &kRegister}, {"AEGP File Import Manager Suite", 2, &kImports},
    {"AEGP Utility Suite", 7, &kUtility},   {"AEGP Persistent Data Suite", 1, &kPersistentData},
    {"AEGP Proj Suite", 5, &kProj},         {"AEGP Item Suite", 10, &kItem},
    {"AEGP Footage Suite", 7, &kFootage},   {"AEGP Comp Suite", 9, &kComp},
    {"AEGP Layer Suite", 11, &kLayer},      {"AEGP Stream Suite", 7, &kStream},
    {"AEGP Keyframe Suite", 3, &kKeyframe}, {"AEGP Light Suite", 2, &kLight},
    {"PF ANSI Suite", 1, &kAnsi},           {"PF AE Adv App Suite", 1, &kAdvApp},
};

A_Err acquire_suite(const char* name, A_long version, const void** suite) {
    return current->acquire(name, version, suite);
}

A_Err release_suite(const char* name, A_long version) {
    return current->release(name, version);
}

}  // namespace

std::string shortest(double number) {
    char digits[64];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number);
    return {digits, end.ptr};
}

RecordingHost::RecordingHost() : before_{current, g_pBasicSuite, g_PluginID, version55} {
    current = this;
    basic_.AcquireSuite = acquire_suite;
    basic_.ReleaseSuite = release_suite;
    g_pBasicSuite = &basic_;
    g_PluginID = kPluginId;
    version55 = true;
}

RecordingHost::~RecordingHost() {
    current = before_.host;
    g_pBasicSuite = before_.basic;
    g_PluginID = before_.plugin_id;
    version55 = before_.version55;
}

void RecordingHost::fail(std::string_view function, A_Err code, int nth) {
    failures_[{std::string(function), nth}] = code;
}

void RecordingHost::fail_call(int number, A_Err code) {
    numbered_failures_[number] = code;
}

void RecordingHost::yield_nothing(std::string_view function, int nth) {
    yielding_nothing_.emplace(std::string(function), nth);
}

void RecordingHost::withhold_suite(std::string_view name, A_long version) {
    withheld_.emplace(std::string(name), version);
}

void RecordingHost::empty_suite(std::string_view name, A_long version) {
    empty_.emplace(std::string(name), version);
}

std::vector<std::string> RecordingHost::calls_of(std::initializer_list<std::string_view> functions) const {
    std::vector<std::string> found;
    for (const std::string& line : calls)
        if (std::find(functions.begin(), functions.end(), line.substr(0, line.find('('))) != functions.end())
            found.push_back(line);
    return found;
}

std::vector<std::string> RecordingHost::left_open() const {
    return open_;
}

std::string RecordingHost::name_of(const void* handle) const {
    if (handle == nullptr)
        return "null";
    const auto found =
        std::find_if(names_.begin(), names_.end(), [&](const std::string& name) { return &name == handle; });
    return found == names_.end() ? "UNKNOWN" : *found;
}

RecordingHost::Opaque RecordingHost::untyped_handle(std::string name) {
    std::string*& known = by_name_[name];
    if (known == nullptr)
        known = &names_.emplace_back(std::move(name));
    return {known};
}

A_Err RecordingHost::begin_call(std::string_view function, const std::string& arguments, bool* yields) {
    const std::string name(function);
    const std::pair<std::string, int> key(name, ++calls_by_function_[name]);
    note(name + "(" + arguments + ")");
    ++call_count_;
    *yields = !yielding_nothing_.contains(key);
    const auto by_number = numbered_failures_.find(call_count_);
    if (by_number != numbered_failures_.end())
        return by_number->second;
    const auto by_name = failures_.find(key);
    return by_name == failures_.end() ? kHostErrorNone : by_name->second;
}

void RecordingHost::end_call(A_Err err, const std::string& yielded) {
    const std::string end = err != kHostErrorNone ? " = " + std::to_string(err)
                            : yielded.empty()     ? ""
                                                  : " -> " + yielded;
    calls.back() += end;
    traffic.back() += end;
}

A_Err RecordingHost::call(std::string_view function, const std::string& arguments) {
    bool yields = false;
    const A_Err err = begin_call(function, arguments, &yields);
    end_call(err, "");
    return err;
}

void RecordingHost::note(const std::string& line) {
    calls.push_back(line);
    traffic.push_back(line);
}

void RecordingHost::remember_closed(const std::string& what) {
    const auto found = std::find(open_.begin(), open_.end(), what);
    if (found == open_.end())
        open_.push_back("CLOSED TWICE: " + what);
    else
        open_.erase(found);
}

A_Err RecordingHost::acquire(const char* name, A_long version, const void** suite) {
    const std::pair<std::string, A_long> key(name, version);
    const std::string named = key.first + " " + std::to_string(version);
    traffic.push_back("acquire " + named);
    *suite = nullptr;
    if (withheld_.contains(key))
        return kHostErrorMissingSuite;
    if (empty_.contains(key))
        return kHostErrorNone;
    const auto* found = std::find_if(
        std::begin(kOffered), std::end(kOffered),
        [&](const OfferedSuite& offered) { return key.first == offered.name && version == offered.version; });
    if (found == std::end(kOffered))
        return kHostErrorMissingSuite;
    *suite = found->table;
    // What is registered through these two must stay reachable; they are never given back.
    if (key.first != "AEGP Register Suite" && key.first != "AEGP Persistent Data Suite")
        remember_open(named);
    return kHostErrorNone;
}

A_Err RecordingHost::release(const char* name, A_long version) {
    const std::string named = std::string(name) + " " + std::to_string(version);
    traffic.push_back("release " + named);
    remember_closed(named);
    return release_result;
}
