#pragma once

// The user-visible texts, shown through the host's report function. The table itself is in
// src/entry/messages.cpp. Texts are shown as they stand: a "%d" is filled in only where the import driver
// does so.

extern const char* const g_pCh_Unknown_null;
extern const char* const g_pCh_Unknown_light;
extern const char* const g_pCh_Unknown_camera;
extern const char* const g_pCh_Cam_and_lights;  ///< kept in the table; names nothing, deliberately
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
