#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor::SkinSprites {

namespace {

struct Row {
    const char *sheet;
    const char *name;
    int x;
    int y;
    int width;
    int height;
};

// Irregular entries are as skins in the wild expect them: the pressed next button is a pixel narrower, the
// two work indicators overlap, the balance strip starts at x 9, and the plain minus signs are strips inside
// the digit row.
// clang-format off
constexpr Row catalogue[] = {
    {"BALANCE", "MAIN_BALANCE_BACKGROUND", 9, 0, 38, 420},
    {"BALANCE", "MAIN_BALANCE_THUMB", 15, 422, 14, 11},
    {"BALANCE", "MAIN_BALANCE_THUMB_ACTIVE", 0, 422, 14, 11},
    {"CBUTTONS", "MAIN_PREVIOUS_BUTTON", 0, 0, 23, 18},
    {"CBUTTONS", "MAIN_PREVIOUS_BUTTON_ACTIVE", 0, 18, 23, 18},
    {"CBUTTONS", "MAIN_PLAY_BUTTON", 23, 0, 23, 18},
    {"CBUTTONS", "MAIN_PLAY_BUTTON_ACTIVE", 23, 18, 23, 18},
    {"CBUTTONS", "MAIN_PAUSE_BUTTON", 46, 0, 23, 18},
    {"CBUTTONS", "MAIN_PAUSE_BUTTON_ACTIVE", 46, 18, 23, 18},
    {"CBUTTONS", "MAIN_STOP_BUTTON", 69, 0, 23, 18},
    {"CBUTTONS", "MAIN_STOP_BUTTON_ACTIVE", 69, 18, 23, 18},
    {"CBUTTONS", "MAIN_NEXT_BUTTON", 92, 0, 23, 18},
    {"CBUTTONS", "MAIN_NEXT_BUTTON_ACTIVE", 92, 18, 22, 18},
    {"CBUTTONS", "MAIN_EJECT_BUTTON", 114, 0, 22, 16},
    {"CBUTTONS", "MAIN_EJECT_BUTTON_ACTIVE", 114, 16, 22, 16},
    {"MAIN", "MAIN_WINDOW_BACKGROUND", 0, 0, 275, 116},
    {"MONOSTER", "MAIN_STEREO", 0, 12, 29, 12},
    {"MONOSTER", "MAIN_STEREO_SELECTED", 0, 0, 29, 12},
    {"MONOSTER", "MAIN_MONO", 29, 12, 27, 12},
    {"MONOSTER", "MAIN_MONO_SELECTED", 29, 0, 27, 12},
    {"NUMBERS", "NO_MINUS_SIGN", 9, 6, 5, 1},
    {"NUMBERS", "MINUS_SIGN", 20, 6, 5, 1},
    {"NUMBERS", "DIGIT_0", 0, 0, 9, 13},
    {"NUMBERS", "DIGIT_1", 9, 0, 9, 13},
    {"NUMBERS", "DIGIT_2", 18, 0, 9, 13},
    {"NUMBERS", "DIGIT_3", 27, 0, 9, 13},
    {"NUMBERS", "DIGIT_4", 36, 0, 9, 13},
    {"NUMBERS", "DIGIT_5", 45, 0, 9, 13},
    {"NUMBERS", "DIGIT_6", 54, 0, 9, 13},
    {"NUMBERS", "DIGIT_7", 63, 0, 9, 13},
    {"NUMBERS", "DIGIT_8", 72, 0, 9, 13},
    {"NUMBERS", "DIGIT_9", 81, 0, 9, 13},
    {"NUMS_EX", "NO_MINUS_SIGN_EX", 90, 0, 9, 13},
    {"NUMS_EX", "MINUS_SIGN_EX", 99, 0, 9, 13},
    {"NUMS_EX", "DIGIT_0_EX", 0, 0, 9, 13},
    {"NUMS_EX", "DIGIT_1_EX", 9, 0, 9, 13},
    {"NUMS_EX", "DIGIT_2_EX", 18, 0, 9, 13},
    {"NUMS_EX", "DIGIT_3_EX", 27, 0, 9, 13},
    {"NUMS_EX", "DIGIT_4_EX", 36, 0, 9, 13},
    {"NUMS_EX", "DIGIT_5_EX", 45, 0, 9, 13},
    {"NUMS_EX", "DIGIT_6_EX", 54, 0, 9, 13},
    {"NUMS_EX", "DIGIT_7_EX", 63, 0, 9, 13},
    {"NUMS_EX", "DIGIT_8_EX", 72, 0, 9, 13},
    {"NUMS_EX", "DIGIT_9_EX", 81, 0, 9, 13},
    {"PLAYPAUS", "MAIN_PLAYING_INDICATOR", 0, 0, 9, 9},
    {"PLAYPAUS", "MAIN_PAUSED_INDICATOR", 9, 0, 9, 9},
    {"PLAYPAUS", "MAIN_STOPPED_INDICATOR", 18, 0, 9, 9},
    {"PLAYPAUS", "MAIN_NOT_WORKING_INDICATOR", 36, 0, 9, 9},
    {"PLAYPAUS", "MAIN_WORKING_INDICATOR", 39, 0, 9, 9},
    {"PLEDIT", "PLAYLIST_TOP_TILE", 127, 21, 25, 20},
    {"PLEDIT", "PLAYLIST_TOP_LEFT_CORNER", 0, 21, 25, 20},
    {"PLEDIT", "PLAYLIST_TITLE_BAR", 26, 21, 100, 20},
    {"PLEDIT", "PLAYLIST_TOP_RIGHT_CORNER", 153, 21, 25, 20},
    {"PLEDIT", "PLAYLIST_TOP_TILE_SELECTED", 127, 0, 25, 20},
    {"PLEDIT", "PLAYLIST_TOP_LEFT_SELECTED", 0, 0, 25, 20},
    {"PLEDIT", "PLAYLIST_TITLE_BAR_SELECTED", 26, 0, 100, 20},
    {"PLEDIT", "PLAYLIST_TOP_RIGHT_CORNER_SELECTED", 153, 0, 25, 20},
    {"PLEDIT", "PLAYLIST_LEFT_TILE", 0, 42, 12, 29},
    {"PLEDIT", "PLAYLIST_RIGHT_TILE", 31, 42, 20, 29},
    {"PLEDIT", "PLAYLIST_BOTTOM_TILE", 179, 0, 25, 38},
    {"PLEDIT", "PLAYLIST_BOTTOM_LEFT_CORNER", 0, 72, 125, 38},
    {"PLEDIT", "PLAYLIST_BOTTOM_RIGHT_CORNER", 126, 72, 150, 38},
    {"PLEDIT", "PLAYLIST_VISUALIZER_BACKGROUND", 205, 0, 75, 38},
    {"PLEDIT", "PLAYLIST_SHADE_BACKGROUND", 72, 57, 25, 14},
    {"PLEDIT", "PLAYLIST_SHADE_BACKGROUND_LEFT", 72, 42, 25, 14},
    {"PLEDIT", "PLAYLIST_SHADE_BACKGROUND_RIGHT", 99, 57, 50, 14},
    {"PLEDIT", "PLAYLIST_SHADE_BACKGROUND_RIGHT_SELECTED", 99, 42, 50, 14},
    {"PLEDIT", "PLAYLIST_SCROLL_HANDLE_SELECTED", 61, 53, 8, 18},
    {"PLEDIT", "PLAYLIST_SCROLL_HANDLE", 52, 53, 8, 18},
    {"PLEDIT", "PLAYLIST_ADD_URL", 0, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_ADD_URL_SELECTED", 23, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_ADD_DIR", 0, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_ADD_DIR_SELECTED", 23, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_ADD_FILE", 0, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_ADD_FILE_SELECTED", 23, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_REMOVE_ALL", 54, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_REMOVE_ALL_SELECTED", 77, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_CROP", 54, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_CROP_SELECTED", 77, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_REMOVE_SELECTED", 54, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_REMOVE_SELECTED_SELECTED", 77, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_REMOVE_MISC", 54, 168, 22, 18},
    {"PLEDIT", "PLAYLIST_REMOVE_MISC_SELECTED", 77, 168, 22, 18},
    {"PLEDIT", "PLAYLIST_INVERT_SELECTION", 104, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_INVERT_SELECTION_SELECTED", 127, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_SELECT_ZERO", 104, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_SELECT_ZERO_SELECTED", 127, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_SELECT_ALL", 104, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_SELECT_ALL_SELECTED", 127, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_SORT_LIST", 154, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_SORT_LIST_SELECTED", 177, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_FILE_INFO", 154, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_FILE_INFO_SELECTED", 177, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_MISC_OPTIONS", 154, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_MISC_OPTIONS_SELECTED", 177, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_NEW_LIST", 204, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_NEW_LIST_SELECTED", 227, 111, 22, 18},
    {"PLEDIT", "PLAYLIST_SAVE_LIST", 204, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_SAVE_LIST_SELECTED", 227, 130, 22, 18},
    {"PLEDIT", "PLAYLIST_LOAD_LIST", 204, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_LOAD_LIST_SELECTED", 227, 149, 22, 18},
    {"PLEDIT", "PLAYLIST_ADD_MENU_BAR", 48, 111, 3, 54},
    {"PLEDIT", "PLAYLIST_REMOVE_MENU_BAR", 100, 111, 3, 72},
    {"PLEDIT", "PLAYLIST_SELECT_MENU_BAR", 150, 111, 3, 54},
    {"PLEDIT", "PLAYLIST_MISC_MENU_BAR", 200, 111, 3, 54},
    {"PLEDIT", "PLAYLIST_LIST_BAR", 250, 111, 3, 54},
    {"PLEDIT", "PLAYLIST_CLOSE_SELECTED", 52, 42, 9, 9},
    {"PLEDIT", "PLAYLIST_COLLAPSE_SELECTED", 62, 42, 9, 9},
    {"PLEDIT", "PLAYLIST_EXPAND_SELECTED", 150, 42, 9, 9},
    {"EQ_EX", "EQ_SHADE_BACKGROUND_SELECTED", 0, 0, 275, 14},
    {"EQ_EX", "EQ_SHADE_BACKGROUND", 0, 15, 275, 14},
    {"EQ_EX", "EQ_SHADE_VOLUME_SLIDER_LEFT", 1, 30, 3, 7},
    {"EQ_EX", "EQ_SHADE_VOLUME_SLIDER_CENTER", 4, 30, 3, 7},
    {"EQ_EX", "EQ_SHADE_VOLUME_SLIDER_RIGHT", 7, 30, 3, 7},
    {"EQ_EX", "EQ_SHADE_BALANCE_SLIDER_LEFT", 11, 30, 3, 7},
    {"EQ_EX", "EQ_SHADE_BALANCE_SLIDER_CENTER", 14, 30, 3, 7},
    {"EQ_EX", "EQ_SHADE_BALANCE_SLIDER_RIGHT", 17, 30, 3, 7},
    {"EQ_EX", "EQ_MAXIMIZE_BUTTON_ACTIVE", 1, 38, 9, 9},
    {"EQ_EX", "EQ_MINIMIZE_BUTTON_ACTIVE", 1, 47, 9, 9},
    {"EQ_EX", "EQ_SHADE_CLOSE_BUTTON", 11, 38, 9, 9},
    {"EQ_EX", "EQ_SHADE_CLOSE_BUTTON_ACTIVE", 11, 47, 9, 9},
    {"EQMAIN", "EQ_WINDOW_BACKGROUND", 0, 0, 275, 116},
    {"EQMAIN", "EQ_TITLE_BAR", 0, 149, 275, 14},
    {"EQMAIN", "EQ_TITLE_BAR_SELECTED", 0, 134, 275, 14},
    {"EQMAIN", "EQ_SLIDER_BACKGROUND", 13, 164, 209, 129},
    {"EQMAIN", "EQ_SLIDER_THUMB", 0, 164, 11, 11},
    {"EQMAIN", "EQ_SLIDER_THUMB_SELECTED", 0, 176, 11, 11},
    {"EQMAIN", "EQ_CLOSE_BUTTON", 0, 116, 9, 9},
    {"EQMAIN", "EQ_CLOSE_BUTTON_ACTIVE", 0, 125, 9, 9},
    {"EQMAIN", "EQ_MAXIMIZE_BUTTON_ACTIVE_FALLBACK", 254, 152, 9, 9},
    {"EQMAIN", "EQ_ON_BUTTON", 10, 119, 26, 12},
    {"EQMAIN", "EQ_ON_BUTTON_DEPRESSED", 128, 119, 26, 12},
    {"EQMAIN", "EQ_ON_BUTTON_SELECTED", 69, 119, 26, 12},
    {"EQMAIN", "EQ_ON_BUTTON_SELECTED_DEPRESSED", 187, 119, 26, 12},
    {"EQMAIN", "EQ_AUTO_BUTTON", 36, 119, 32, 12},
    {"EQMAIN", "EQ_AUTO_BUTTON_DEPRESSED", 154, 119, 32, 12},
    {"EQMAIN", "EQ_AUTO_BUTTON_SELECTED", 95, 119, 32, 12},
    {"EQMAIN", "EQ_AUTO_BUTTON_SELECTED_DEPRESSED", 213, 119, 32, 12},
    {"EQMAIN", "EQ_GRAPH_BACKGROUND", 0, 294, 113, 19},
    {"EQMAIN", "EQ_GRAPH_LINE_COLORS", 115, 294, 1, 19},
    {"EQMAIN", "EQ_PRESETS_BUTTON", 224, 164, 44, 12},
    {"EQMAIN", "EQ_PRESETS_BUTTON_SELECTED", 224, 176, 44, 12},
    {"EQMAIN", "EQ_PREAMP_LINE", 0, 314, 113, 1},
    {"POSBAR", "MAIN_POSITION_SLIDER_BACKGROUND", 0, 0, 248, 10},
    {"POSBAR", "MAIN_POSITION_SLIDER_THUMB", 248, 0, 29, 10},
    {"POSBAR", "MAIN_POSITION_SLIDER_THUMB_SELECTED", 278, 0, 29, 10},
    {"SHUFREP", "MAIN_SHUFFLE_BUTTON", 28, 0, 47, 15},
    {"SHUFREP", "MAIN_SHUFFLE_BUTTON_DEPRESSED", 28, 15, 47, 15},
    {"SHUFREP", "MAIN_SHUFFLE_BUTTON_SELECTED", 28, 30, 47, 15},
    {"SHUFREP", "MAIN_SHUFFLE_BUTTON_SELECTED_DEPRESSED", 28, 45, 47, 15},
    {"SHUFREP", "MAIN_REPEAT_BUTTON", 0, 0, 28, 15},
    {"SHUFREP", "MAIN_REPEAT_BUTTON_DEPRESSED", 0, 15, 28, 15},
    {"SHUFREP", "MAIN_REPEAT_BUTTON_SELECTED", 0, 30, 28, 15},
    {"SHUFREP", "MAIN_REPEAT_BUTTON_SELECTED_DEPRESSED", 0, 45, 28, 15},
    {"SHUFREP", "MAIN_EQ_BUTTON", 0, 61, 23, 12},
    {"SHUFREP", "MAIN_EQ_BUTTON_SELECTED", 0, 73, 23, 12},
    {"SHUFREP", "MAIN_EQ_BUTTON_DEPRESSED", 46, 61, 23, 12},
    {"SHUFREP", "MAIN_EQ_BUTTON_DEPRESSED_SELECTED", 46, 73, 23, 12},
    {"SHUFREP", "MAIN_PLAYLIST_BUTTON", 23, 61, 23, 12},
    {"SHUFREP", "MAIN_PLAYLIST_BUTTON_SELECTED", 23, 73, 23, 12},
    {"SHUFREP", "MAIN_PLAYLIST_BUTTON_DEPRESSED", 69, 61, 23, 12},
    {"SHUFREP", "MAIN_PLAYLIST_BUTTON_DEPRESSED_SELECTED", 69, 73, 23, 12},
    {"TITLEBAR", "MAIN_TITLE_BAR", 27, 15, 275, 14},
    {"TITLEBAR", "MAIN_TITLE_BAR_SELECTED", 27, 0, 275, 14},
    {"TITLEBAR", "MAIN_EASTER_EGG_TITLE_BAR", 27, 72, 275, 14},
    {"TITLEBAR", "MAIN_EASTER_EGG_TITLE_BAR_SELECTED", 27, 57, 275, 14},
    {"TITLEBAR", "MAIN_OPTIONS_BUTTON", 0, 0, 9, 9},
    {"TITLEBAR", "MAIN_OPTIONS_BUTTON_DEPRESSED", 0, 9, 9, 9},
    {"TITLEBAR", "MAIN_MINIMIZE_BUTTON", 9, 0, 9, 9},
    {"TITLEBAR", "MAIN_MINIMIZE_BUTTON_DEPRESSED", 9, 9, 9, 9},
    {"TITLEBAR", "MAIN_SHADE_BUTTON", 0, 18, 9, 9},
    {"TITLEBAR", "MAIN_SHADE_BUTTON_DEPRESSED", 9, 18, 9, 9},
    {"TITLEBAR", "MAIN_CLOSE_BUTTON", 18, 0, 9, 9},
    {"TITLEBAR", "MAIN_CLOSE_BUTTON_DEPRESSED", 18, 9, 9, 9},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BACKGROUND", 304, 0, 8, 43},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BACKGROUND_DISABLED", 312, 0, 8, 43},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BUTTON_O_SELECTED", 304, 47, 8, 8},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BUTTON_A_SELECTED", 312, 55, 8, 7},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BUTTON_I_SELECTED", 320, 62, 8, 7},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BUTTON_D_SELECTED", 328, 69, 8, 8},
    {"TITLEBAR", "MAIN_CLUTTER_BAR_BUTTON_V_SELECTED", 336, 77, 8, 7},
    {"TITLEBAR", "MAIN_SHADE_BACKGROUND", 27, 42, 275, 14},
    {"TITLEBAR", "MAIN_SHADE_BACKGROUND_SELECTED", 27, 29, 275, 14},
    {"TITLEBAR", "MAIN_SHADE_BUTTON_SELECTED", 0, 27, 9, 9},
    {"TITLEBAR", "MAIN_SHADE_BUTTON_SELECTED_DEPRESSED", 9, 27, 9, 9},
    {"TITLEBAR", "MAIN_SHADE_POSITION_BACKGROUND", 0, 36, 17, 7},
    {"TITLEBAR", "MAIN_SHADE_POSITION_THUMB", 20, 36, 3, 7},
    {"TITLEBAR", "MAIN_SHADE_POSITION_THUMB_LEFT", 17, 36, 3, 7},
    {"TITLEBAR", "MAIN_SHADE_POSITION_THUMB_RIGHT", 23, 36, 3, 7},
    {"VOLUME", "MAIN_VOLUME_BACKGROUND", 0, 0, 68, 420},
    {"VOLUME", "MAIN_VOLUME_THUMB", 15, 422, 14, 11},
    {"VOLUME", "MAIN_VOLUME_THUMB_SELECTED", 0, 422, 14, 11},
    {"GEN", "GEN_TOP_LEFT_SELECTED", 0, 0, 25, 20},
    {"GEN", "GEN_TOP_LEFT_END_SELECTED", 26, 0, 25, 20},
    {"GEN", "GEN_TOP_CENTER_FILL_SELECTED", 52, 0, 25, 20},
    {"GEN", "GEN_TOP_RIGHT_END_SELECTED", 78, 0, 25, 20},
    {"GEN", "GEN_TOP_LEFT_RIGHT_FILL_SELECTED", 104, 0, 25, 20},
    {"GEN", "GEN_TOP_RIGHT_SELECTED", 130, 0, 25, 20},
    {"GEN", "GEN_TOP_LEFT", 0, 21, 25, 20},
    {"GEN", "GEN_TOP_LEFT_END", 26, 21, 25, 20},
    {"GEN", "GEN_TOP_CENTER_FILL", 52, 21, 25, 20},
    {"GEN", "GEN_TOP_RIGHT_END", 78, 21, 25, 20},
    {"GEN", "GEN_TOP_LEFT_RIGHT_FILL", 104, 21, 25, 20},
    {"GEN", "GEN_TOP_RIGHT", 130, 21, 25, 20},
    {"GEN", "GEN_BOTTOM_LEFT", 0, 42, 125, 14},
    {"GEN", "GEN_BOTTOM_RIGHT", 0, 57, 125, 14},
    {"GEN", "GEN_BOTTOM_FILL", 127, 72, 25, 14},
    {"GEN", "GEN_MIDDLE_LEFT", 127, 42, 11, 29},
    {"GEN", "GEN_MIDDLE_LEFT_BOTTOM", 158, 42, 11, 24},
    {"GEN", "GEN_MIDDLE_RIGHT", 139, 42, 8, 29},
    {"GEN", "GEN_MIDDLE_RIGHT_BOTTOM", 170, 42, 8, 24},
    {"GEN", "GEN_CLOSE_SELECTED", 148, 42, 9, 9},
    {"TEXT", "CHARACTER_97", 0, 0, 5, 6},
    {"TEXT", "CHARACTER_98", 5, 0, 5, 6},
    {"TEXT", "CHARACTER_99", 10, 0, 5, 6},
    {"TEXT", "CHARACTER_100", 15, 0, 5, 6},
    {"TEXT", "CHARACTER_101", 20, 0, 5, 6},
    {"TEXT", "CHARACTER_102", 25, 0, 5, 6},
    {"TEXT", "CHARACTER_103", 30, 0, 5, 6},
    {"TEXT", "CHARACTER_104", 35, 0, 5, 6},
    {"TEXT", "CHARACTER_105", 40, 0, 5, 6},
    {"TEXT", "CHARACTER_106", 45, 0, 5, 6},
    {"TEXT", "CHARACTER_107", 50, 0, 5, 6},
    {"TEXT", "CHARACTER_108", 55, 0, 5, 6},
    {"TEXT", "CHARACTER_109", 60, 0, 5, 6},
    {"TEXT", "CHARACTER_110", 65, 0, 5, 6},
    {"TEXT", "CHARACTER_111", 70, 0, 5, 6},
    {"TEXT", "CHARACTER_112", 75, 0, 5, 6},
    {"TEXT", "CHARACTER_113", 80, 0, 5, 6},
    {"TEXT", "CHARACTER_114", 85, 0, 5, 6},
    {"TEXT", "CHARACTER_115", 90, 0, 5, 6},
    {"TEXT", "CHARACTER_116", 95, 0, 5, 6},
    {"TEXT", "CHARACTER_117", 100, 0, 5, 6},
    {"TEXT", "CHARACTER_118", 105, 0, 5, 6},
    {"TEXT", "CHARACTER_119", 110, 0, 5, 6},
    {"TEXT", "CHARACTER_120", 115, 0, 5, 6},
    {"TEXT", "CHARACTER_121", 120, 0, 5, 6},
    {"TEXT", "CHARACTER_122", 125, 0, 5, 6},
    {"TEXT", "CHARACTER_34", 130, 0, 5, 6},
    {"TEXT", "CHARACTER_64", 135, 0, 5, 6},
    {"TEXT", "CHARACTER_32", 150, 0, 5, 6},
    {"TEXT", "CHARACTER_48", 0, 6, 5, 6},
    {"TEXT", "CHARACTER_49", 5, 6, 5, 6},
    {"TEXT", "CHARACTER_50", 10, 6, 5, 6},
    {"TEXT", "CHARACTER_51", 15, 6, 5, 6},
    {"TEXT", "CHARACTER_52", 20, 6, 5, 6},
    {"TEXT", "CHARACTER_53", 25, 6, 5, 6},
    {"TEXT", "CHARACTER_54", 30, 6, 5, 6},
    {"TEXT", "CHARACTER_55", 35, 6, 5, 6},
    {"TEXT", "CHARACTER_56", 40, 6, 5, 6},
    {"TEXT", "CHARACTER_57", 45, 6, 5, 6},
    {"TEXT", "CHARACTER_8230", 50, 6, 5, 6},
    {"TEXT", "CHARACTER_46", 55, 6, 5, 6},
    {"TEXT", "CHARACTER_58", 60, 6, 5, 6},
    {"TEXT", "CHARACTER_40", 65, 6, 5, 6},
    {"TEXT", "CHARACTER_41", 70, 6, 5, 6},
    {"TEXT", "CHARACTER_45", 75, 6, 5, 6},
    {"TEXT", "CHARACTER_39", 80, 6, 5, 6},
    {"TEXT", "CHARACTER_33", 85, 6, 5, 6},
    {"TEXT", "CHARACTER_95", 90, 6, 5, 6},
    {"TEXT", "CHARACTER_43", 95, 6, 5, 6},
    {"TEXT", "CHARACTER_92", 100, 6, 5, 6},
    {"TEXT", "CHARACTER_47", 105, 6, 5, 6},
    {"TEXT", "CHARACTER_91", 110, 6, 5, 6},
    {"TEXT", "CHARACTER_93", 115, 6, 5, 6},
    {"TEXT", "CHARACTER_94", 120, 6, 5, 6},
    {"TEXT", "CHARACTER_38", 125, 6, 5, 6},
    {"TEXT", "CHARACTER_37", 130, 6, 5, 6},
    {"TEXT", "CHARACTER_44", 135, 6, 5, 6},
    {"TEXT", "CHARACTER_61", 140, 6, 5, 6},
    {"TEXT", "CHARACTER_36", 145, 6, 5, 6},
    {"TEXT", "CHARACTER_35", 150, 6, 5, 6},
    {"TEXT", "CHARACTER_197", 0, 12, 5, 6},
    {"TEXT", "CHARACTER_214", 5, 12, 5, 6},
    {"TEXT", "CHARACTER_196", 10, 12, 5, 6},
    {"TEXT", "CHARACTER_63", 15, 12, 5, 6},
    {"TEXT", "CHARACTER_42", 20, 12, 5, 6},
    {"TEXT", "CHARACTER_60", 110, 6, 5, 6},
    {"TEXT", "CHARACTER_62", 115, 6, 5, 6},
    {"TEXT", "CHARACTER_123", 110, 6, 5, 6},
    {"TEXT", "CHARACTER_125", 115, 6, 5, 6},
};
// clang-format on

QMap<QString, std::vector<Sprite>> makeSheets() {
    QMap<QString, std::vector<Sprite>> sheets;
    for (const Row &row : catalogue)
        sheets[QLatin1String(row.sheet)].push_back(
            {QLatin1String(row.name), row.x, row.y, row.width, row.height});
    return sheets;
}

QHash<QString, Entry> makeByName() {
    QHash<QString, Entry> entries;
    const QMap<QString, std::vector<Sprite>> &all = sheets();
    for (auto sheet = all.cbegin(); sheet != all.cend(); ++sheet) {
        for (const Sprite &sprite : sheet.value())
            entries.insert(sprite.name, {sheet.key(), sprite});
    }
    return entries;
}

QHash<QString, QString> makeDigitTwins() {
    QHash<QString, QString> twins;
    for (const Sprite &sprite : sheets().value(QStringLiteral("NUMBERS")))
        twins.insert(sprite.name, sprite.name + QLatin1String("_EX"));
    return twins;
}

} // namespace

const QMap<QString, std::vector<Sprite>> &sheets() {
    static const QMap<QString, std::vector<Sprite>> value = makeSheets();
    return value;
}

const QHash<QString, Entry> &byName() {
    static const QHash<QString, Entry> value = makeByName();
    return value;
}

const QHash<QString, QString> &fallbacks() {
    static const QHash<QString, QString> value{
        {QStringLiteral("MAIN_BALANCE_BACKGROUND"), QStringLiteral("MAIN_VOLUME_BACKGROUND")},
        {QStringLiteral("MAIN_BALANCE_THUMB"), QStringLiteral("MAIN_VOLUME_THUMB")},
        {QStringLiteral("MAIN_BALANCE_THUMB_ACTIVE"), QStringLiteral("MAIN_VOLUME_THUMB_SELECTED")},
        {QStringLiteral("EQ_MAXIMIZE_BUTTON_ACTIVE"), QStringLiteral("EQ_MAXIMIZE_BUTTON_ACTIVE_FALLBACK")},
        {QStringLiteral("EQ_SHADE_BACKGROUND"), QStringLiteral("EQ_TITLE_BAR")},
        {QStringLiteral("EQ_SHADE_BACKGROUND_SELECTED"), QStringLiteral("EQ_TITLE_BAR_SELECTED")},
    };
    return value;
}

const QSet<QString> &optionalSheets() {
    static const QSet<QString> value{QStringLiteral("BALANCE"), QStringLiteral("NUMBERS"),
                                     QStringLiteral("NUMS_EX"), QStringLiteral("EQ_EX"),
                                     QStringLiteral("GEN")};
    return value;
}

const QHash<QString, QString> &digitTwins() {
    static const QHash<QString, QString> value = makeDigitTwins();
    return value;
}

} // namespace vantor::SkinSprites
