#pragma once

#include "host/host_interface.h"

// What the plug-in keeps of its host, and the texts that it shows through it. src/entry defines both.

// Written once, at start-up; read by every callback.

/// The host's basic suite; every AEGP_SuiteHandler is built over it.
extern SPBasicSuite* g_pBasicSuite;

/// The identifier that the host gave to this plug-in, which passes it in every call that asks for one.
extern AEGP_PluginID g_PluginID;

/// True from interface version 9.32 on. Older hosts get no cameras, lights and nulls and no alpha label.
extern bool version55;

// The messages, shown through the host's report function as they are: only the import driver fills in a "%d".

extern const char* const g_pCh_Unknown_null;
extern const char* const g_pCh_Unknown_light;
extern const char* const g_pCh_Unknown_camera;
extern const char* const g_pCh_Cam_and_lights;  ///< kept in the table; deliberately, nothing shows it
extern const char* const g_pCh_Import_media;
extern const char* const g_pCh_Error_interpret_footage;
extern const char* const g_pCh_Error_create_composition;
extern const char* const g_pCh_Error_register_file_type;
extern const char* const g_pCh_Unable_get_file_data;
extern const char* const g_pCh_Error_Drawing_frame;
extern const char* const g_pCh_Error_Register_plugin;
extern const char* const g_pCh_Error_loading_file;
extern const char* const g_pCh_Others;
extern const char* const g_pCh_VortanXR_composition;
