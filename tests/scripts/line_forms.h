#pragma once

#include <array>
#include <string_view>

/// Script lines in the form of the decoder, of the editor and of the script file, worked out by hand.
/// Parameters that are not written here are 0.
namespace line_tables {

using Parameters = std::array<int, 5>;

enum class Form { decoder, editor, file };

// ---- Commands ----

struct Command_Facts {
    int command;
    int parameters;     ///< that a script file carries
    int jump_parameter; ///< -1: none
};

inline constexpr Command_Facts command_facts[] = {
    {0, 0, -1},  {1, 4, -1},  {2, 0, -1},  {3, 0, -1},  {4, 3, 2},   {5, 4, 3},   {6, 1, 0},
    {7, 4, -1},  {8, 2, -1},  {9, 0, -1},  {10, 4, -1}, {11, 4, -1}, {12, 3, -1}, {13, 2, -1},
    {14, 1, -1}, {15, 3, -1}, {16, 2, -1}, {17, 2, -1}, {18, 0, -1}, {19, 2, -1}, {20, 2, -1},
    {21, 4, 2},  {22, 4, 3},  {23, 4, 3},  {24, 2, -1}, {25, 3, -1}, {26, 4, -1}, {27, 2, -1},
    {28, 4, -1}, {29, 3, -1}, {30, 5, -1}, {31, 4, -1}, {32, 4, -1}, {33, 4, -1},
};

// ---- Lines that come back exactly from the editor and from a file ----

struct Line_Forms {
    int command;
    Parameters decoder, editor, file;
    const char* why = "";
};

constexpr Line_Forms alike(int command, Parameters parameters, const char* why = "") {
    return {command, parameters, parameters, parameters, why};
}

inline constexpr Line_Forms line_forms[] = {
    alike(0, {}),
    alike(0, {1, 2, 3, 4, 5}, "no meaning, but kept"),

    // Sound: every written amplitude, every loop byte
    {1, {0, 0, 0, 0}, {0, 0, 2, 0}, {0, 0, 2, 0}, "full volume is 0, not 256"},
    {1, {5, 181, 8, 0}, {5, 1, 0, 0}, {5, 1, 0, 0}},
    {1, {5, 128, 9, 0}, {5, 2, 3, 0}, {5, 2, 3, 0}},
    {1, {5, 91, 10, 0}, {5, 3, 4, 0}, {5, 3, 4, 0}},
    {1, {5, 64, 11, 0}, {5, 4, 5, 0}, {5, 4, 5, 0}},
    {1, {5, 46, 12, 0}, {5, 5, 6, 0}, {5, 5, 6, 0}},
    {1, {5, 32, 13, 0}, {5, 6, 7, 0}, {5, 6, 7, 0}},
    {1, {5, 23, 14, 0}, {5, 7, 8, 0}, {5, 7, 8, 0}},
    {1, {5, 16, 15, 0}, {5, 8, 9, 0}, {5, 8, 9, 0}},
    {1, {5, 11, 64, 0}, {5, 9, 10, 0}, {5, 9, 10, 0}},
    {1, {257, 181, 72, 0}, {257, 1, 1, 0}, {257, 1, 1, 0}},
    {1, {1, 128, 77, 0}, {1, 2, 15, 0}, {1, 2, 15, 0}},
    {1, {256, 11, 78, 0}, {256, 9, 16, 0}, {256, 9, 16, 0}},
    {1, {255, 0, 79, 0}, {255, 0, 17, 0}, {255, 0, 17, 0}},
    {1, {5, 0, 73, 1}, {5, 0, 11, 1}, {5, 0, 11, 1}, "CV 980"},
    {1, {5, 39, 74, 1}, {5, 39, 12, 1}, {5, 39, 12, 1}, "CV 1019"},
    {1, {5, 23, 75, 1}, {5, 23, 13, 1}, {5, 23, 13, 1}, "CV 1003, though 23 is an amplitude too"},
    {1, {5, 4, 76, 1}, {5, 4, 14, 1}, {5, 4, 14, 1}, "CV 984, though 4 is a step too"},
    {1, {5, 16, 8, 3}, {5, 16, 0, 3}, {5, 16, 0, 3}, "bit 0 alone tells a CV"},
    {1, {5, 16, 8, 2}, {5, 8, 0, 2}, {5, 8, 0, 2}, "bit 0 alone tells a CV"},

    alike(2, {}),
    alike(2, {1, 2, 3, 4, 5}),
    alike(3, {}),
    alike(3, {1, 2, 3, 4, 5}),

    // Key codes are the same everywhere; only the editor's list has another order
    alike(4, {28, 0, 7}, "F0"),
    alike(4, {0, 1, 0}, "F1"),
    alike(4, {27, 1, 255}, "F28"),
    alike(4, {29, 0, 1}, "MAN"),
    alike(4, {32, 1, 3}, "CV 980"),
    alike(4, {71, 1, 3}, "CV 1019"),
    alike(4, {73, 0, 3}, "last entry of the list"),
    alike(4, {30, 0, 3}, "not in the list, but kept"),

    alike(5, {0, 0, 0, 0}),
    alike(5, {22, 3, 255, 255}),
    alike(5, {5, 4, 0, 12}, "CV 980"),
    alike(5, {6, 7, 39, 9}, "CV 1019"),
    alike(6, {0}),
    alike(6, {255}),
    alike(7, {1, 126, 3, 0}),
    alike(7, {3, 39, 2, 1}, "CV 1019"),

    {8, {0, 8}, {0, 0}, {0, 0}, "looped is the first entry"},
    {8, {255, 0}, {255, 1}, {255, 1}},

    alike(9, {}),
    alike(9, {1, 2, 3, 4, 5}),
    alike(10, {0, 255, 128, 0}),
    alike(10, {100, 200, 64, 7}),
    alike(11, {2, 64, 255, 0}),
    alike(11, {3, 0, 1, 255}),
    alike(12, {255, 0, 0}),
    alike(12, {0, 1, 6}, "CV 980"),
    alike(12, {7, 40, 3}, "CV 1019"),
    alike(12, {7, 41, 7}, "outside both lists"),
    alike(13, {1, 9}),
    alike(13, {0, 0}),
    alike(14, {1}),
    alike(14, {0}),
    alike(15, {14, 31, 0}),
    alike(15, {39, 31, 1}, "output from CV 1019"),
    alike(15, {1, 39, 2}, "PWM from CV 1019"),
    alike(15, {0, 39, 3}, "both from CVs"),
    alike(16, {0, 1}),
    alike(16, {15, 255}),

    {17, {255, 8}, {255, 0}, {255, 0}},
    {17, {0, 0}, {0, 1}, {0, 1}},

    alike(18, {}),
    alike(18, {1, 2, 3, 4, 5}),
    alike(19, {1, 9}),
    alike(19, {0, 0}),
    alike(20, {0, 16}),
    alike(20, {18, 0}),
    alike(21, {3, 1, 255, 0}),
    alike(21, {39, 0, 4, 1}, "CV 1019"),
    alike(22, {15, 3, 255, 255}),
    alike(22, {0, 4, 39, 0}, "CV 1019"),
    alike(23, {3, 2, 255, 255}),
    alike(23, {0, 7, 0, 1}, "CV 980"),
    alike(24, {0, 255}),
    alike(24, {3, 0}),
    alike(25, {3, 1, 0}),
    alike(25, {15, 0, 1}),
    alike(26, {0, 255, 0, 6}),
    alike(26, {10, 20, 4, 0}),
    alike(27, {0, 255}),
    alike(27, {9, 2}),

    // PWM group
    {28, {0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {28, {2, 1, 0}, {5, 0, 0, 0}, {5, 0, 0, 0}},
    {28, {3, 0, 248}, {6, 31, 0, 0}, {6, 31, 0, 0}},
    {28, {0, 1, 6}, {1, 0, 3, 0}, {1, 0, 3, 0}, "a fourth blink mode that the list lacks"},
    {28, {1, 0, 1}, {2, 0, 0, 1}, {2, 0, 0, 1}},
    {28, {1, 1, 83}, {3, 10, 1, 1}, {3, 10, 1, 1}, "83 = 10 * 8 + 1 * 2 + 1"},
    {28, {127, 1, 140}, {255, 17, 2, 0}, {255, 17, 2, 0}, "140 = 17 * 8 + 2 * 2"},

    alike(29, {64, 255, 0}),
    alike(29, {39, 0, 3}, "both from CVs"),

    // CV ranges: files keep page and block, the editor has one list entry for both
    {30, {0, 0, 0, 255, 0}, {0, 0, 255, 0}, {0, 0, 0, 255, 0}},
    {30, {0, 1, 255, 7, 1}, {1, 255, 7, 1}, {0, 1, 255, 7, 1}},
    {30, {0, 2, 10, 99, 0}, {2, 10, 99, 0}, {0, 2, 10, 99, 0}},
    {30, {0, 3, 20, 0, 2}, {3, 20, 0, 2}, {0, 3, 20, 0, 2}},
    {30, {145, 0, 30, 1, 1}, {4, 30, 1, 1}, {145, 0, 30, 1, 1}},
    {30, {145, 2, 40, 5, 2}, {5, 40, 5, 2}, {145, 2, 40, 5, 2}},

    {31, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {31, {0, 1, 28, 15}, {1, 28, 7, 1}, {0, 1, 28, 15}},
    {31, {0, 2, 255, 1}, {2, 255, 0, 1}, {0, 2, 255, 1}},
    {31, {0, 3, 9, 14}, {3, 9, 7, 0}, {0, 3, 9, 14}},
    {31, {145, 0, 9, 6}, {4, 9, 3, 0}, {145, 0, 9, 6}},
    {31, {145, 2, 9, 9}, {5, 9, 4, 1}, {145, 2, 9, 9}},

    {32, {0, 0, 0, 3}, {0, 0, 3}, {0, 0, 0, 3}},
    {32, {0, 1, 255, 0}, {1, 255, 0}, {0, 1, 255, 0}},
    {32, {0, 2, 7, 1}, {2, 7, 1}, {0, 2, 7, 1}},
    {32, {0, 3, 8, 2}, {3, 8, 2}, {0, 3, 8, 2}},
    {32, {145, 0, 9, 3}, {4, 9, 3}, {145, 0, 9, 3}},
    {32, {145, 2, 255, 1}, {5, 255, 1}, {145, 2, 255, 1}},

    {33, {0, 0, 28, 0}, {0, 28, 0, 0}, {0, 0, 28, 0}},
    {33, {0, 1, 0, 7}, {1, 0, 7, 0}, {0, 1, 0, 7}},
    {33, {0, 2, 255, 8}, {2, 255, 0, 1}, {0, 2, 255, 8}},
    {33, {0, 3, 4, 29}, {3, 4, 5, 3}, {0, 3, 4, 29}, "29 = 3 * 8 + 5"},
    {33, {145, 0, 4, 18}, {4, 4, 2, 2}, {145, 0, 4, 18}, "18 = 2 * 8 + 2"},
    {33, {145, 2, 4, 255}, {5, 4, 7, 31}, {145, 2, 4, 255}, "bits 3 to 7 are the variable"},
};

// ---- Values that do not come back ----

/// How the volume of a sound is read from the decoder, for the editor and for a file alike: plain
/// steps 1..9, which libraries in use hold, then both ends of each range. What is written back are
/// the amplitudes of `line_forms`.
struct Amplitude {
    int stored;
    int step;
};

inline constexpr Amplitude amplitudes_read[] = {
    {1, 1},  {2, 2},  {3, 3},   {4, 4},   {5, 5},   {6, 6},   {7, 7},   {8, 8},   {9, 9},   {10, 9},
    {13, 9}, {14, 8}, {19, 8},  {20, 7},  {27, 7},  {28, 6},  {38, 6},  {39, 5},  {54, 5},  {55, 4},
    {76, 4}, {77, 3}, {107, 3}, {108, 2}, {152, 2}, {153, 1}, {215, 1}, {216, 0}, {255, 0},
};

struct One_Way {
    int command;
    Form from, to;
    Parameters input, output;
    const char* why = "";
};

inline constexpr One_Way one_way[] = {
    // Amplitudes, here with their line; all of them in `amplitudes_read`
    {1, Form::decoder, Form::editor, {5, 200, 8, 0}, {5, 1, 0, 0}},
    {1, Form::decoder, Form::file, {5, 3, 64, 0}, {5, 3, 10, 0}, "a plain step"},
    {1, Form::decoder, Form::file, {5, 255, 0, 2}, {5, 0, 2, 2}},

    // Steps that no list offers
    {1, Form::file, Form::decoder, {5, 10, 0, 0}, {5, 0, 8, 0}},
    {1, Form::file, Form::decoder, {5, 11, 0, 0}, {5, 0, 8, 0}},
    {1, Form::file, Form::decoder, {5, 255, 2, 0}, {5, 0, 0, 0}},
    {1, Form::editor, Form::decoder, {5, 10, 0, 0}, {5, 0, 8, 0}, "a step as in a file"},

    // Loop bytes and loop entries outside the table
    {1, Form::decoder, Form::editor, {5, 0, 1, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::editor, {5, 0, 7, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::editor, {5, 0, 16, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::editor, {5, 0, 63, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::editor, {5, 0, 65, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::editor, {5, 0, 71, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::editor, {5, 39, 80, 1}, {5, 39, 0, 1}},
    {1, Form::decoder, Form::editor, {5, 0, 136, 0}, {5, 0, 0, 0}, "8 with bit 7"},
    {1, Form::decoder, Form::file, {5, 0, 71, 0}, {5, 0, 0, 0}},
    {1, Form::decoder, Form::file, {5, 0, 255, 0}, {5, 0, 0, 0}},
    {1, Form::editor, Form::decoder, {5, 1, 18, 0}, {5, 181, 0, 0}},
    {1, Form::editor, Form::decoder, {5, 0, -1, 0}, {5, 0, 0, 0}, "a list without a choice"},
    {1, Form::editor, Form::decoder, {5, 39, 72, 1}, {5, 39, 0, 1}, "a decoder's value"},
    {1, Form::file, Form::decoder, {5, 9, 18, 0}, {5, 11, 0, 0}},
    {1, Form::file, Form::decoder, {5, 0, 255, 0}, {5, 0, 0, 0}},

    // A group whose low part is more than a bit
    {28, Form::decoder, Form::editor, {1, 3, 8}, {5, 1, 0, 0}},
    {28, Form::decoder, Form::file, {1, 3, 8}, {5, 1, 0, 0}},

    // CV ranges that no list offers
    {30, Form::decoder, Form::editor, {0, 4, 9, 8, 1}, {0, 9, 8, 1}},
    {30, Form::decoder, Form::editor, {0, 145, 9, 8, 1}, {0, 9, 8, 1}},
    {30, Form::decoder, Form::editor, {145, 1, 9, 8, 1}, {0, 9, 8, 1}},
    {30, Form::decoder, Form::editor, {1, 2, 9, 8, 1}, {0, 9, 8, 1}},
    {31, Form::decoder, Form::editor, {145, 3, 9, 13}, {0, 9, 6, 1}},
    {32, Form::decoder, Form::editor, {146, 2, 9, 3}, {0, 9, 3}},
    {33, Form::decoder, Form::editor, {0, 5, 9, 11}, {0, 9, 3, 1}},
    {33, Form::file, Form::editor, {145, 4, 9, 11}, {0, 9, 3, 1}},
    {30, Form::editor, Form::decoder, {6, 9, 8, 1}, {0, 0, 9, 8, 1}},
    {31, Form::editor, Form::decoder, {-1, 9, 6, 1}, {0, 0, 9, 13}},
    {32, Form::editor, Form::decoder, {145, 9, 3}, {0, 0, 9, 3}},
    {33, Form::editor, Form::file, {255, 9, 3, 1}, {0, 0, 9, 11}},

    // Bits above the bit number
    {31, Form::decoder, Form::editor, {0, 2, 9, 31}, {2, 9, 7, 1}},
    {31, Form::decoder, Form::editor, {0, 2, 9, 240}, {2, 9, 0, 0}},
};

// ---- CVs that a line refers to ----

/// Parameters in decoder form, which is the editor's as far as references go; those of command 32 in
/// editor form.
struct CV_Reference {
    int command;
    Parameters parameters;
    int which;
    int cv;           ///< 0: none
    int count;        ///< of the command, whatever its parameters hold
    Parameters after; ///< the reference set to CV 1001; of no interest where there is none
    const char* why = "";
};

inline constexpr CV_Reference cv_references[] = {
    {1, {5, 0, 8, 1}, 0, 980, 1, {5, 21, 8, 1}},
    {1, {5, 39, 8, 3}, 0, 1019, 1, {5, 21, 8, 3}, "other flags stay"},
    {1, {5, 39, 8, 0}, 0, 0, 1, {}},
    {1, {5, 39, 8, 2}, 0, 0, 1, {}},
    {1, {5, 39, 8, 1}, 1, 0, 1, {}},
    {4, {31, 1, 7}, 0, 0, 1, {}},
    {4, {32, 1, 7}, 0, 980, 1, {53, 1, 7}},
    {4, {40, 0, 7}, 0, 988, 1, {53, 0, 7}},
    {4, {71, 1, 7}, 0, 1019, 1, {53, 1, 7}},
    {4, {72, 1, 7}, 0, 0, 1, {}, "in the key list, but no script CV"},
    {4, {28, 1, 7}, 0, 0, 1, {}},
    {5, {6, 4, 0, 9}, 0, 980, 1, {6, 4, 21, 9}},
    {5, {6, 7, 39, 9}, 0, 1019, 1, {6, 7, 21, 9}},
    {5, {6, 3, 39, 9}, 0, 0, 1, {}},
    {5, {6, 7, 39, 9}, 1, 0, 1, {}},
    {7, {1, 0, 2, 1}, 0, 980, 1, {1, 21, 2, 1}},
    {7, {1, 39, 2, 0}, 0, 0, 1, {}},
    {12, {9, 0, 6}, 0, 0, 1, {}},
    {12, {9, 1, 6}, 0, 980, 1, {9, 22, 6}},
    {12, {9, 40, 6}, 0, 1019, 1, {9, 22, 6}},
    {12, {9, 41, 6}, 0, 0, 1, {}},
    {15, {3, 31, 0}, 0, 0, 2, {}},
    {15, {3, 31, 0}, 1, 0, 2, {}},
    {15, {3, 31, 1}, 0, 983, 2, {21, 31, 1}},
    {15, {3, 31, 1}, 1, 0, 2, {}},
    {15, {3, 31, 2}, 0, 0, 2, {}},
    {15, {3, 31, 2}, 1, 1011, 2, {3, 21, 2}},
    {15, {0, 39, 3}, 0, 980, 2, {21, 39, 3}},
    {15, {0, 39, 3}, 1, 1019, 2, {0, 21, 3}},
    {21, {39, 1, 4, 1}, 0, 1019, 1, {21, 1, 4, 1}},
    {21, {3, 1, 4, 0}, 0, 0, 1, {}},
    {22, {2, 5, 39, 9}, 0, 1019, 1, {2, 5, 21, 9}},
    {22, {4, 1, 39, 9}, 0, 0, 1, {}},
    {23, {2, 6, 1, 9}, 0, 981, 1, {2, 6, 21, 9}},
    {23, {3, 2, 1, 9}, 0, 0, 1, {}},

    // The CV that is read: seen, never set
    {32, {0, 0, 3}, 0, 1, 0, {0, 0, 3}},
    {32, {1, 255, 3}, 0, 512, 0, {1, 255, 3}},
    {32, {3, 211, 3}, 0, 980, 0, {3, 211, 3}, "768 + 1 + 211"},
    {32, {4, 0, 3}, 0, 9502721, 0, {4, 0, 3}, "145 * 65536 + 1"},
    {32, {4, 255, 3}, 0, 9502976, 0, {4, 255, 3}},
    {32, {5, 0, 3}, 0, 9503233, 0, {5, 0, 3}, "145 * 65536 + 513"},
    {32, {6, 0, 3}, 0, 0, 0, {}},

    // Commands without a reference, whatever their flags seem to say
    {0, {32, 1, 1, 1}, 0, 0, 0, {}},
    {8, {32, 8, 1, 1}, 0, 0, 0, {}},
    {26, {32, 4, 1, 1}, 0, 0, 0, {}},
    {30, {0, 4, 1, 1}, 0, 0, 0, {}},
    {33, {3, 4, 1, 1}, 0, 0, 0, {}},
};

// ---- Lists of keys and loops ----

struct Key_Code {
    int decoder;
    int index;
    std::string_view name;
};

inline constexpr Key_Code key_codes[] = {
    {28, 0, "F0"},       {0, 1, "F1"},        {1, 2, "F2"},        {26, 27, "F27"},
    {27, 28, "F28"},     {29, 29, "MAN"},     {32, 30, "CV#980"},  {40, 38, "CV#988"},
    {71, 69, "CV#1019"}, {72, 70, "CV#1020"}, {73, 71, "CV#1021"},
};

inline constexpr int codes_read_as_f0[] = {-1, 30, 31, 74, 255};
inline constexpr int key_indexes_that_change_nothing[] = {-1, 72, 73, 255};

struct Loop_Byte {
    int decoder;
    int editor;
    int loop; ///< 0 once, 1..7 that often and once more, 8 until the sound is ended
    int end;  ///< 0 plays all, 1 skips ahead to the end of the loop
};

inline constexpr Loop_Byte loop_bytes[] = {
    {0, 2, 0, 0},   {9, 3, 1, 0},   {10, 4, 2, 0},  {11, 5, 3, 0},  {12, 6, 4, 0},  {13, 7, 5, 0},
    {14, 8, 6, 0},  {15, 9, 7, 0},  {8, 0, 8, 0},   {64, 10, 0, 1}, {73, 11, 1, 1}, {74, 12, 2, 1},
    {75, 13, 3, 1}, {76, 14, 4, 1}, {77, 15, 5, 1}, {78, 16, 6, 1}, {79, 17, 7, 1}, {72, 1, 8, 1},
};

// ---- Texts ----

struct Output_Name {
    int output;
    std::string_view name;
};

/// As in the sentence about a CV's use.
inline constexpr Output_Name output_names[] = {
    {0, "FA0v"}, {1, "FA0r"}, {2, "FA1"}, {14, "FA13"}, {22, "FA21"}};

struct Listed_Output {
    int index;
    std::string_view german, english;
};

/// As in the editor's list, which ends with the last of these.
inline constexpr Listed_Output listed_outputs[] = {
    {0, "Lv", "Lv"}, {1, "Lr", "Lr"}, {2, "FA1", "FO1"}, {18, "FA17", "FO17"}};

struct Timer_Time {
    int value;
    int unit;
    std::string_view german, english;
};

inline constexpr Timer_Time timer_times[] = {
    {0, 0, "0s", "0s"},           {3, 0, "0,3s", "0.3s"},    {7, 0, "0,7s", "0.7s"},
    {10, 0, "1s", "1s"},          {100, 0, "10s", "10s"},    {255, 0, "25,5s", "25.5s"},
    {15, 1, "15ms", "15ms"},      {15, 2, "150ms", "150ms"}, {255, 2, "2550ms", "2550ms"},
    {15, 3, "1,5s", "1.5s"},      {15, 4, "15s", "15s"},     {15, 5, "150s", "150s"},
    {255, 6, "25500s", "25500s"}, {15, 7, "", ""},           {15, -1, "", ""},
};

} // namespace line_tables
