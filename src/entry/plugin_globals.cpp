#include "host/plugin_globals.h"

SPBasicSuite* g_pBasicSuite = nullptr;
AEGP_PluginID g_PluginID = 0;
bool version55 = false;

const char* const g_pCh_Unknown_null = "Unknown null";
const char* const g_pCh_Unknown_light = "Unknown light";
const char* const g_pCh_Unknown_camera = "Unknown camera";
const char* const g_pCh_Cam_and_lights = "Cameras and lights";
const char* const g_pCh_Import_media = "Import media";
const char* const g_pCh_Error_interpret_footage = "Could not interpret footage.";
const char* const g_pCh_Error_create_composition = "Unable to create composition.";
const char* const g_pCh_Error_register_file_type = "Could not register file type.";
const char* const g_pCh_Unable_get_file_data = "Unable to get file data";
const char* const g_pCh_Error_Drawing_frame = "There was an error drawing the frame.";
const char* const g_pCh_Error_Register_plugin = "There was an error registering the plugin.";
const char* const g_pCh_Error_loading_file = "There was an error loading the file in line %d.";
const char* const g_pCh_Others = "Special Passes";
const char* const g_pCh_VortanXR_composition = "VORTAN XR Composition";
