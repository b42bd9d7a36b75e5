#include <algorithm>
#include <cstring>
#include <map>

#include "support/recording_host/argument_text.h"
#include "support/recording_host/suite_tables.h"

namespace {

bool all_zero(const void* begin, std::size_t bytes) {
    const auto* first = static_cast<const unsigned char*>(begin);
    return std::all_of(first, first + bytes, [](unsigned char byte) { return byte == 0; });
}

std::size_t dimensions_of(const std::string& stream) {
    if (stream.ends_with("/color")) {
        return 4;
    }
    if (stream.ends_with("/position") || stream.ends_with("/anchor") || stream.ends_with("/orientation")) {
        return 3;
    }
    return stream.ends_with("/scale") ? 2 : 1;
}

// The numbers of a value, as many as its stream has; whatever else is wrong with the record shows in
// capitals.
std::string value_text(const AEGP_StreamValue* value, const std::string& stream) {
    const std::size_t dimensions = dimensions_of(stream);
    std::string out;
    for (std::size_t i = 0; i < dimensions; ++i) {
        out += (i == 0 ? "" : ", ") + text(value->value.four_d.values[i]);
    }
    if (!all_zero(&value->value.four_d.values[dimensions], (4 - dimensions) * sizeof(double))) {
        out += " NOT CLEARED";
    }
    if (host().name_of(value->stream) != stream) {
        out += " FOR ANOTHER STREAM";
    }
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

// ---- AEGP Register Suite, AEGP File Import Manager Suite

A_Err register_death_hook(AEGP_PluginID id, AEGP_DeathHook hook, AEGP_DeathRefcon refcon) {
    host().death_hooks.emplace_back(hook, refcon);
    return host().call("RegisterDeathHook", list(id, static_cast<const void*>(refcon)));
}

A_Err register_io(AEGP_PluginID id, AEGP_IORefcon refcon, const AEIO_ModuleInfo* info,
                  const AEIO_FunctionBlock2* functions) {
    host().registered_module = *info;
    host().registered_functions = *functions;
    return host().call("RegisterIO", list(id, static_cast<const void*>(refcon), +info->name));
}

A_Err register_flavor(const A_char* name, AE_FIM_ImportFlavorRef* flavor) {
    const A_Err err = host().call("RegisterImportFlavor", list(name, *flavor));
    if (err == kHostErrorNone) {
        *flavor = host().flavor;
    }
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
    return host().call("RegisterImportFlavorFileTypes",
                       list(flavor, type_count) + ", type " + text(types->mac.type) + " creator " +
                           text(types->mac.creator) + ", " + text(extension_count) + ", bytes " +
                           kinds_text(extension_count, extensions));
}

A_Err register_callbacks(AE_FIM_ImportFlavorRef flavor, AE_FIM_ImportFlags flags,
                         const AE_FIM_ImportCallbacks* callbacks) {
    host().registered_callbacks = *callbacks;
    return host().call("RegisterImportFlavorImportCallbacks",
                       list(flavor, flags, static_cast<const void*>(callbacks->refcon)));
}

// ---- AEGP Persistent Data Suite

A_Err get_application_blob(AEGP_PersistentBlobH* blob) {
    return host().call("GetApplicationBlob", "", blob, "blob");
}

A_Err does_key_exist(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_Boolean* exists) {
    const A_Err err = host().call("DoesKeyExist", list(blob, section, key));
    if (err == kHostErrorNone) {
        *exists = host().alpha_preference.has_value() ? 1 : 0;
    }
    return err;
}

A_Err get_data(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_u_long size,
               const void* default_data, void* data) {
    const A_Err err = host().call("GetData", list(blob, section, key, size) + ", default " +
                                                 text(*static_cast<const A_u_char*>(default_data)));
    if (err == kHostErrorNone) {
        *static_cast<A_u_char*>(data) = *host().alpha_preference;
    }
    return err;
}

A_Err set_data(AEGP_PersistentBlobH blob, const A_char* section, const A_char* key, A_u_long size,
               const void* data) {
    const A_u_char value = *static_cast<const A_u_char*>(data);
    const A_Err err = host().call("SetData", list(blob, section, key, size, value));
    if (err == kHostErrorNone) {
        host().alpha_preference = value;
    }
    return err;
}

// ---- AEGP Proj Suite, AEGP Item Suite, AEGP Footage Suite

A_Err get_project(A_long index, AEGP_ProjectH* project) {
    return host().call("GetProjectByIndex", list(index), project, "project");
}

A_Err get_root_folder(AEGP_ProjectH project, AEGP_ItemH* folder) {
    return host().call("GetProjectRootFolder", list(project), folder, "root");
}

A_Err create_folder(const A_char* name, AEGP_ItemH parent, AEGP_ItemH* folder) {
    return host().call("CreateNewFolder", list(name, parent), folder, host().numbered("folder"));
}

A_Err new_footage(AEGP_PluginID id, const A_char* path, const AEGP_FootageLayerKey* key,
                  const AEGP_FileSequenceImportOptions* sequence, AEGP_InterpretationStyle style,
                  void* reserved, AEGP_FootageH* footage) {
    return host().call(
        "NewFootage",
        list(id, path, static_cast<const void*>(key), sequence, style, static_cast<const void*>(reserved)),
        footage, host().numbered("footage"));
}

A_Err new_placeholder(AEGP_PluginID id, const A_char* name, A_long width, A_long height,
                      const A_Time* duration, AEGP_FootageH* footage) {
    return host().call("NewPlaceholderFootage", list(id, name, width, height, duration), footage,
                       host().numbered("placeholder"));
}

A_Err add_footage(AEGP_FootageH footage, AEGP_ItemH folder, AEGP_ItemH* item) {
    return host().call("AddFootageToProject", list(footage, folder), item, "item(" + text(footage) + ")");
}

A_Err get_interpretation(AEGP_ItemH item, A_Boolean proxy, AEGP_FootageInterp* interpretation) {
    const bool cleared = all_zero(interpretation, sizeof *interpretation);
    const A_Err err =
        host().call("GetFootageInterpretation", list(item, proxy) + (cleared ? "" : " NOT CLEARED"));
    if (err == kHostErrorNone) {
        *interpretation = host().interpretation;
    }
    return err;
}

A_Err set_interpretation(AEGP_ItemH item, A_Boolean proxy, const AEGP_FootageInterp* given) {
    const AEGP_FootageInterp& i = *given;
    return host().call("SetFootageInterpretation",
                       list(item, proxy) + ", fields " + text(A_u_long{i.interlace.type}) + "/" +
                           text(A_u_long{i.interlace.order}) + ", alpha " + text(i.alpha.flags) +
                           ", aspect " + text(&i.pixel_aspect) + ", native " + text(i.native_fps) +
                           ", conform " + text(i.conform_fps) + ", motion " + text(i.motion));
}

// ---- AEGP Comp Suite, AEGP Layer Suite, AEGP Light Suite

A_Err get_comp_from_item(AEGP_ItemH item, AEGP_CompH* comp) {
    std::string name = text(item);
    if (name.starts_with("item(")) {
        name = name.substr(5, name.size() - 6);
    }
    return host().call("GetCompFromItem", list(item), comp, name);
}

A_Err get_item_from_comp(AEGP_CompH comp, AEGP_ItemH* item) {
    return host().call("GetItemFromComp", list(comp), item, "item(" + text(comp) + ")");
}

A_Err create_comp(AEGP_ItemH folder, const A_char* name, A_long width, A_long height, const A_Ratio* aspect,
                  const A_Time* duration, const A_Ratio* rate, AEGP_CompH* comp) {
    return host().call("CreateComp", list(folder, name, width, height, aspect, duration, rate), comp,
                       host().numbered("comp"));
}

A_Err create_camera(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return host().call("CreateCameraInComp", list(name, center, comp), layer, host().numbered("camera"));
}

A_Err create_light(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return host().call("CreateLightInComp", list(name, center, comp), layer, host().numbered("light"));
}

A_Err create_null(const A_char* name, AEGP_CompH comp, const A_Time* duration, AEGP_LayerH* layer) {
    return host().call("CreateNullInComp", list(name, comp, duration), layer, host().numbered("null"));
}

A_Err set_layer_flag(AEGP_LayerH layer, AEGP_LayerFlags flag, A_Boolean value) {
    return host().call("SetLayerFlag", list(layer, flag, value));
}

A_Err set_in_point(AEGP_LayerH layer, AEGP_LTimeMode mode, const A_Time* in_point, const A_Time* duration) {
    return host().call("SetLayerInPointAndDuration", list(layer, mode, in_point, duration));
}

A_Err set_offset(AEGP_LayerH layer, const A_Time* offset) {
    return host().call("SetLayerOffset", list(layer, offset));
}

A_Err get_transfer_mode(AEGP_LayerH layer, AEGP_LayerTransferMode* mode) {
    const A_Err err = host().call("GetLayerTransferMode", list(layer));
    if (err == kHostErrorNone) {
        *mode = host().transfer_mode;
    }
    return err;
}

A_Err set_transfer_mode(AEGP_LayerH layer, const AEGP_LayerTransferMode* mode) {
    return host().call("SetLayerTransferMode", list(layer, mode));
}

A_Err is_add_layer_valid(AEGP_ItemH item, AEGP_CompH comp, A_Boolean* valid) {
    *valid = host().add_layer_valid;
    return host().call("IsAddLayerValid", list(item, comp));
}

A_Err add_layer(AEGP_ItemH item, AEGP_CompH comp, AEGP_LayerH* layer) {
    return host().call("AddLayer", list(item, comp), layer, host().numbered("layer"));
}

A_Err set_light_type(AEGP_LayerH layer, AEGP_LightType type) {
    return host().call("SetLightType", list(layer, type));
}

// ---- AEGP Stream Suite, AEGP Keyframe Suite

A_Err get_stream(AEGP_PluginID id, AEGP_LayerH layer, AEGP_LayerStream which, AEGP_StreamRefH* stream) {
    const std::string name = text(layer) + "/" + stream_name(which);
    *stream = nullptr;
    const A_Err err = host().call("GetNewLayerStream", list(id, layer, which), stream, name);
    if (err == kHostErrorNone && *stream != nullptr) {
        host().remember_open(name);
    }
    return err;
}

A_Err dispose_stream(AEGP_StreamRefH stream) {
    host().remember_closed(text(stream));
    return host().call("DisposeStream", list(stream));
}

A_Err set_stream_value(AEGP_PluginID id, AEGP_StreamRefH stream, AEGP_StreamValue* value) {
    return host().call("SetStreamValue", list(id, stream) + ", " + value_text(value, text(stream)));
}

A_Err start_add_keyframes(AEGP_StreamRefH stream, AEGP_AddKeyframesInfoH* info) {
    return host().call("StartAddKeyframes", list(stream), info, "keys(" + text(stream) + ")");
}

// Each track begins at another index, so that one track's index given to another shows.
A_long first_index(const std::string& keys) {
    A_long index = 0;
    for (const char c : keys) {
        index = (index * 31 + c) % 89;
    }
    return index * 100;
}

std::string stream_of(AEGP_AddKeyframesInfoH info) {
    const std::string keys = text(info);
    return keys.starts_with("keys(") ? keys.substr(5, keys.size() - 6) : keys;
}

A_Err add_keyframes(AEGP_AddKeyframesInfoH info, AEGP_LTimeMode mode, const A_Time* time, A_long* index) {
    const A_Err err = host().call("AddKeyframes", list(info, mode, time));
    if (err == kHostErrorNone) {
        *index = first_index(text(info)) + host().key_counts[text(info)]++;
    }
    return err;
}

A_Err set_add_keyframe(AEGP_AddKeyframesInfoH info, A_long index, const AEGP_StreamValue* value) {
    return host().call("SetAddKeyframe", list(info) + ", #" + text(index - first_index(text(info))) + ", " +
                                             value_text(value, stream_of(info)));
}

A_Err end_add_keyframes(A_Boolean add, AEGP_AddKeyframesInfoH info) {
    return host().call("EndAddKeyframes", list(add, info));
}

// ---- the tables

const AEGP_RegisterSuite4 kRegister = {{}, register_death_hook, {}, register_io, {}};
const AEGP_FileImportManagerSuite2 kImports = {register_flavor, register_file_types, register_callbacks, {}};
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
const PF_AEAdvAppSuite1 kAdvApp = {};

}  // namespace

const std::vector<OfferedSuite>& classic_project_suites() {
    static const std::vector<OfferedSuite> kSuites = {
        {"AEGP Register Suite", 4, &kRegister},
        {"AEGP File Import Manager Suite", 2, &kImports},
        {"AEGP Persistent Data Suite", 1, &kPersistentData},
        {"AEGP Proj Suite", 5, &kProj},
        {"AEGP Item Suite", 10, &kItem},
        {"AEGP Footage Suite", 7, &kFootage},
        {"AEGP Comp Suite", 9, &kComp},
        {"AEGP Layer Suite", 11, &kLayer},
        {"AEGP Stream Suite", 7, &kStream},
        {"AEGP Keyframe Suite", 3, &kKeyframe},
        {"AEGP Light Suite", 2, &kLight},
        {"PF AE Adv App Suite", 1, &kAdvApp},
    };
    return kSuites;
}
