#include "embedded/module_driver.h"

#include <algorithm>
#include <utility>

#include "embedded/host_path.h"
#include "embedded/poisoned_output.h"

namespace embedded {
namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

OpenResult failed(const CallbackResult& callback, std::string error) {
    return {callback, std::move(error), 0};
}

/// Text of a fixed field, which need not be terminated.
template <std::size_t N>
std::string field_text(const A_char (&field)[N]) {
    return {field, std::find(field, field + N, '\0')};
}

/// Asks what current hosts also ask about a file, once with null for the answer.
void ask_about_other_files(Session& session, const Module& module, AEIO_InSpecH handle) {
    const auto* functions = std::get_if<AEIO_FunctionBlock4>(&module.functions);
    if (functions == nullptr) {
        return;
    }
    using Count = A_Err (*)(AEIO_BasicData*, AEIO_InSpecH, A_long*);
    const auto ask = [&](const char* name, Count function) {
        if (function == nullptr) {
            return;
        }
        Output<A_long> count(session);
        const CallbackResult answer =
            session.run(name, [&] { return function(&session.basic_data, handle, count.address()); });
        if (answer.code == kHostErrorNone) {
            count.take(session, name, "the number");
        }
    };
    ask("AEIO_NumAuxFiles", functions->AEIO_NumAuxFiles);
    ask("AEIO_GetNumAuxChannels", functions->AEIO_GetNumAuxChannels);
    if (functions->AEIO_NumAuxFiles != nullptr) {
        session.run("AEIO_NumAuxFiles",
                    [&] { return functions->AEIO_NumAuxFiles(&session.basic_data, handle, nullptr); });
    }
}

/// A module that fails may have attached its options already, and must free them itself.
OpenResult abandon(Session& session, Id in_spec, const CallbackResult& callback, std::string error) {
    if (session.in_spec(in_spec).options != 0) {
        dispose_in_spec(session, in_spec);
    } else {
        session.in_spec(in_spec).disposed = true;
        session.handles.kill(HandleKind::in_spec, in_spec);
    }
    return failed(callback, std::move(error));
}

}  // namespace

std::string lower_extension(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    const std::size_t separator = path.find_last_of("/\\");
    if (dot == std::string_view::npos || (separator != std::string_view::npos && separator > dot)) {
        return {};
    }
    std::string extension(path.substr(dot));
    std::transform(extension.begin(), extension.end(), extension.begin(), lower);
    return extension;
}

std::string extension_text(const AEIO_FileExt& extension) {
    std::string text = ".";
    for (const A_char c : extension.extension) {
        if (c != '\0' && c != ' ') {
            text += lower(c);
        }
    }
    return text;
}

const Module* module_for(const Session& session, std::string_view path) {
    const std::string extension = lower_extension(path);
    for (const Module& module : session.modules) {
        const std::vector<std::string> taken = module.extensions();
        if (std::find(taken.begin(), taken.end(), extension) != taken.end()) {
            return &module;
        }
    }
    return nullptr;
}

Id make_in_spec(Session& session, const std::string& path) {
    session.handles.make<AEIO_InSpecH>();
    InSpec& made = session.project.in_specs.emplace_back();
    made.id = static_cast<Id>(session.project.in_specs.size());
    made.path = path;
    return made.id;
}

OpenResult open_with_module(Session& session, const Module& registered, const std::string& path) {
    if (std::string problem = path_problem(session.options.generation, path); !problem.empty()) {
        return failed({kHostErrorParameter, false}, std::move(problem));
    }
    const HostPath named(session.options.generation, path);
    const Module module = registered;  // a callback may register more and move the table
    AEIO_BasicData* basic = &session.basic_data;
    basic->refcon = module.refcon;

    Output<A_Boolean> importable(session);
    // Has the module run one of its functions, as a callback of that name.
    const auto ask = [&](const char* name, const auto& call) {
        return session.run(name, [&] { return module.with_functions(call); });
    };
    CallbackResult callback = ask("AEIO_VerifyFileImportable", [&](const auto& functions) {
        return functions.AEIO_VerifyFileImportable(basic, module.info.signature, named.given_to(functions),
                                                   importable.address());
    });
    if (callback.code != kHostErrorNone) {
        return failed(callback, "the module could not verify the file");
    }
    if (importable.take(session, "AEIO_VerifyFileImportable", "importable") == 0) {
        return failed({kHostErrorGeneric, false}, "the module does not accept the file");
    }

    const Id id = make_in_spec(session, path);
    session.in_spec(id).module_signature = module.info.signature;
    const auto handle = session.handles.handle<AEIO_InSpecH>(id);
    callback = ask("AEIO_InitInSpecFromFile", [&](const auto& functions) {
        return functions.AEIO_InitInSpecFromFile(basic, named.given_to(functions), handle);
    });
    if (callback.code != kHostErrorNone) {
        return abandon(session, id, callback, "the module could not read the file");
    }

    Output<AEIO_Verbiage> verbiage(session);
    constexpr const char* kGetInfo = "AEIO_GetInSpecInfo";
    callback = ask(kGetInfo, [&](const auto& functions) {
        return functions.AEIO_GetInSpecInfo(basic, handle, verbiage.address());
    });
    if (callback.code == kHostErrorNone) {
        const AEIO_Verbiage texts = verbiage.take(session, kGetInfo, "the verbiage");
        if (session.options.generation == HostGeneration::today &&
            static_cast<unsigned char>(texts.name[0]) == kPoison) {
            session.conformance.add(
                conformance_finding(RuleViolation::output_not_set, 0, kGetInfo, "the name was not set"));
        }
        session.in_spec(id).type_text = field_text(texts.type);
        session.in_spec(id).sub_type_text = field_text(texts.sub_type);
    } else if (callback.code != kHostUseDefaultCallback) {
        return abandon(session, id, callback, "the module could not describe the file");
    }

    const A_Ratio scale[2] = {{1, 1}, {1, 1}};  // horizontal, vertical: full size
    Output<A_long> width(session);
    Output<A_long> height(session);
    constexpr const char* kGetDimensions = "AEIO_GetDimensions";
    callback = ask(kGetDimensions, [&](const auto& functions) {
        return functions.AEIO_GetDimensions(basic, handle, scale, width.address(), height.address());
    });
    if (callback.code == kHostErrorNone) {
        session.in_spec(id).width = width.take(session, kGetDimensions, "the width");
        session.in_spec(id).height = height.take(session, kGetDimensions, "the height");
        session.in_spec(id).dimensions_from_module = true;
    } else if (callback.code != kHostUseDefaultCallback) {
        return abandon(session, id, callback, "the module could not give the dimensions");
    }

    Output<A_Time> duration(session);
    constexpr const char* kGetDuration = "AEIO_GetDuration";
    callback = ask(kGetDuration, [&](const auto& functions) {
        return functions.AEIO_GetDuration(basic, handle, duration.address());
    });
    if (callback.code == kHostErrorNone) {
        session.in_spec(id).duration = duration.take(session, kGetDuration, "the duration");
        session.in_spec(id).duration_from_module = true;
    } else if (callback.code != kHostUseDefaultCallback) {
        return abandon(session, id, callback, "the module could not give the duration");
    }
    ask_about_other_files(session, module, handle);

    const InSpec& opened = session.in_spec(id);
    if (opened.width < 1 || opened.height < 1 || opened.duration.scale == 0) {
        return abandon(session, id, {kHostErrorGeneric, false},
                       "the module gave no dimensions or no duration");
    }
    return {{}, {}, id};
}

CallbackResult dispose_in_spec(Session& session, Id id) {
    if (id < 1 || Project::index(id) >= session.project.in_specs.size() || session.in_spec(id).disposed) {
        return {kHostErrorParameter, false};
    }
    session.in_spec(id).disposed = true;
    CallbackResult result;
    for (const Module& registered : session.modules) {
        if (registered.info.signature != session.in_spec(id).module_signature) {
            continue;
        }
        const Module module = registered;
        session.basic_data.refcon = module.refcon;
        const auto handle = session.handles.handle<AEIO_InSpecH>(id);
        result = session.run("AEIO_DisposeInSpec", [&] {
            return module.with_functions([&](const auto& functions) {
                return functions.AEIO_DisposeInSpec(&session.basic_data, handle);
            });
        });
        break;
    }
    session.handles.kill(HandleKind::in_spec, id);
    // Options that the module left attached have no owner now.
    if (const Id options = session.in_spec(id).options; options != 0) {
        session.memory.block(options).in_spec = 0;
        session.in_spec(id).options = 0;
        session.left_memory(options, "AEIO_DisposeInSpec");
    }
    return result;
}

}  // namespace embedded
