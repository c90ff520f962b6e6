// The controls of the main dialog and of the twenty-one effect pages, as data: id, kind, caption,
// range text, setting key and the key's default. Everything else (the dialog model, the settings'
// defaults, each effect row's list of control ids) is derived from these tables, so they are
// constexpr and checked at compile time. A captioned control that is not a check has its label at
// id + 1; a spin edit has its updown at id + 10000, holding the range text "min,max,default".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/dialog.h"

struct PageControl {
  int32_t id;
  ControlKind kind;
  const char* caption;  // label text, or a check's or button's own caption
  const char* range;    // spin edits: "min,max,default"; lists: rows parted by ";"
  const char* key;      // the setting it mirrors, or null
  int32_t keyDefault;   // the setting's default (ignored for string settings)
  uint32_t colour;      // the initial colour of colour and material buttons
};

struct PageTable {
  int32_t style;
  const PageControl* controls;
  int32_t count;
};

namespace page_rows {

constexpr PageControl Material(int32_t id, const char* caption, uint32_t colour,
                               const char* key = nullptr) {
  return {id, kControlMaterialButton, caption, nullptr, key, static_cast<int32_t>(colour), colour};
}
constexpr PageControl Colour(int32_t id, const char* caption, const char* key, uint32_t colour) {
  return {id, kControlColourButton, caption, nullptr, key, static_cast<int32_t>(colour), colour};
}
constexpr PageControl Spin(int32_t id, const char* caption, const char* range, const char* key,
                           int32_t keyDefault) {
  return {id, kControlSpinEdit, caption, range, key, keyDefault, 0};
}
constexpr PageControl Check(int32_t id, const char* caption, const char* key, int32_t keyDefault) {
  return {id, kControlCheckBox, caption, nullptr, key, keyDefault, 0};
}
constexpr PageControl Combo(int32_t id, const char* caption, const char* rows, const char* key,
                            int32_t keyDefault) {
  return {id, kControlComboList, caption, rows, key, keyDefault, 0};
}
constexpr PageControl Picker(int32_t id, ControlKind kind, const char* caption, const char* key,
                             int32_t keyDefault) {
  return {id, kind, caption, nullptr, key, keyDefault, 0};
}
constexpr PageControl Shadow8(int32_t id, const char* key) {
  return Picker(id, kControlShadowPicker, "Shadow direction:", key, 7);
}
constexpr PageControl Label(int32_t id, const char* caption) {
  return {id, kControlLabel, caption, nullptr, nullptr, 0, 0};
}
constexpr PageControl Other(int32_t id, ControlKind kind, const char* caption, const char* key) {
  return {id, kind, caption, nullptr, key, 0, 0};
}

// The rotation lists of Machine and Quark: degrees per frame, every one a divisor of 360.
inline constexpr const char* kRotationRows =
    "-60;-45;-40;-30;-24;-20;-15;-12;-10;-9;-8;-6;-5;-4;-3;-2;-1;1;2;3;4;5;6;8;9;10;12;15;20;24;30;"
    "40;45;60";

// The five colours and four enables shared by the particle effects.
// Each enable check follows the colour it enables, so that the layout sets it beside that colour.
#define GM5_FIVE_COLOURS(first, style, c1, c2, c3, c4, c5)           \
  Colour(first, "Color 1:", "Style" style "FillColor1", c1),         \
      Colour(first + 2, "Color 2:", "Style" style "FillColor2", c2), \
      Check(first + 10, "Enable", "Style" style "FillEnable2", 1),   \
      Colour(first + 4, "Color 3:", "Style" style "FillColor3", c3), \
      Check(first + 11, "Enable", "Style" style "FillEnable3", 1),   \
      Colour(first + 6, "Color 4:", "Style" style "FillColor4", c4), \
      Check(first + 12, "Enable", "Style" style "FillEnable4", 1),   \
      Colour(first + 8, "Color 5:", "Style" style "FillColor5", c5), \
      Check(first + 13, "Enable", "Style" style "FillEnable5", 1)

// Shadow, background, outline, the opacities and the shadow geometry in the order most pages use:
// ids first, first + 2, ... with the two enables at first + 16 and first + 17.
inline constexpr std::array kSimple = {
    Material(100, "Fill:", 0xBD7E40),
    Material(102, "Shadow:", 0x7F7F7F, "Style000ShadowColor"),
    Material(104, "Background:", 0xFFFFFF),
    Colour(106, "Outline:", "Style000OutlineColor", 3355443),
    Spin(108, "Fill opacity:", "0,255,255", "Style000FillOpacity", 255),
    Spin(110, "Shadow opacity:", "0,255,255", "Style000ShadowOpacity", 255),
    Spin(112, "Frames:", "2,32760,64", "Style000Frames", 64),
    Spin(114, "Softness:", "0,40,10", "Style000Soft", 20),
    Spin(116, "Shadow offset:", "1,255,4", "Style000ShadowOffset", 4),
    Picker(118, kControlScroll4Picker, "Scroll:", "Style000Scroll", 1),
    Shadow8(120, "Style000ShadowDirection"),
    Check(122, "Shadow enable", "Style000ShadowEnable", 1),
    Check(123, "Outline enable", "Style000OutlineEnable", 1),
    Check(124, "Track", "Style000Track", 1),
};

inline constexpr std::array kRing = {
    Material(134, "Fill:", 0xBD7E40),
    Material(136, "Shadow:", 0x7F7F7F, "Style001ShadowColor"),
    Material(138, "Background:", 0xFFFFFF),
    Colour(140, "Outline:", "Style001OutlineColor", 0x333333),
    Spin(142, "Opacity:", "0,255,255", "Style001FillOpacity", 255),
    Spin(144, "Opacity:", "0,255,255", "Style001ShadowOpacity", 255),
    Spin(146, "Softness:", "0,40,10", "Style001Soft", 20),
    Spin(148, "Shadow offset:", "1,255,4", "Style001ShadowOffset", 10),
    Shadow8(150, "Style001ShadowDirection"),
    Check(152, "Shadow enable", "Style001ShadowEnable", 1),
    Check(153, "Outline enable", "Style001OutlineEnable", 1),
    Combo(154, "Rotation:", kRotationRows, "Style001Angle", 15),
    Spin(156, "Radius:", "32,512,32", "Style001Radius", 128),
    Spin(158, "Start angle:", "0,359,0", "Style001InitAngle", 0),
};

inline constexpr std::array kSnow = {
    Material(167, "Shadow:", 0x7F7F7F, "Style002ShadowColor"),
    Material(169, "Background:", 0xFFFFFF),
    Colour(171, "Outline:", "Style002OutlineColor", 0x333333),
    Spin(173, "Opacity:", "0,255,255", "Style002ShadowOpacity", 255),
    Spin(175, "Frames:", "2,32760,64", "Style002Frames", 64),
    Spin(177, "Softness:", "0,40,10", "Style002Soft", 20),
    Spin(179, "Shadow offset:", "1,255,4", "Style002ShadowOffset", 4),
    Shadow8(181, "Style002ShadowDirection"),
    Check(183, "Shadow enable", "Style002ShadowEnable", 1),
    Check(184, "Outline enable", "Style002OutlineEnable", 1),
    Material(185, "Fill background:", 0xFFFFFF),
    Spin(187, "Fill opacity:", "1,255,255", "Style002FillOpacity", 255),
    Spin(189, "Drift:", "0,99,25", "Style002Drift", 8),
    Spin(191, "Size:", "10,128,18", "Style002Size", 56),
    Spin(193, "Density:", "1,99,3", "Style002Density", 64),
    Spin(195, "Seed:", "100,32760,1002", "Style002Seed", 10651),
    GM5_FIVE_COLOURS(201, "002", 0xEAE3DB, 0xDDBC9B, 0xC08243, 0x95632C, 0x7E5429),
};

inline constexpr std::array kStars = {
    Material(224, "Shadow:", 0x7F7F7F),
    Material(226, "Background:", 0xFFFFFF),
    Colour(228, "Outline:", nullptr, 0x333333),
    Spin(230, "Opacity:", "0,255,255", nullptr, 0),
    Spin(232, "Frames:", "2,32760,64", "Style003Frames", 64),
    Spin(234, "Softness:", "0,40,20", nullptr, 0),
    Spin(236, "Shadow offset:", "1,255,4", nullptr, 0),
    Picker(238, kControlShadowPicker, "Shadow direction:", nullptr, 7),
    Check(240, "Shadow enable", nullptr, 1),
    Check(241, "Outline enable", nullptr, 1),
    Material(242, "Fill background:", 0xFFFFFF),
    Spin(244, "Fill opacity:", "1,255,255", "Style003FillOpacity", 255),
    Spin(246, "Drift:", "0,99,4", "Style003Drift", 4),
    Spin(248, "Size:", "10,128,48", "Style003Size", 48),
    Spin(250, "Density:", "1,99,68", "Style003Density", 68),
    Spin(252, "Seed:", "100,32760,10647", "Style003Seed", 10647),
    GM5_FIVE_COLOURS(258, "003", 0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF),
    Check(272, "Variable sizes", "Style003Variable", 1),
};

inline constexpr std::array kMachine = {
    Material(282, "Shadow:", 0x7F7F7F, "Style004ShadowColor"),
    Material(284, "Background:", 0xFFFFFF),
    Colour(286, "Outline:", "Style004OutlineColor", 0x333333),
    Spin(288, "Opacity:", "0,255,255", "Style004ShadowOpacity", 255),
    Spin(292, "Softness:", "0,40,20", "Style004Soft", 20),
    Spin(294, "Shadow offset:", "1,255,4", "Style004ShadowOffset", 4),
    Shadow8(296, "Style004ShadowDirection"),
    Check(298, "Shadow enable", "Style004ShadowEnable", 1),
    Check(299, "Outline enable", "Style004OutlineEnable", 1),
    Spin(300, "Size:", "16,1024,48", "Style004Size", 48),
    Colour(302, "Start:", "Style004Start", 0xFFFFFF),
    Colour(304, "End:", "Style004End", 0x996633),
    Combo(306, "Rotation:", kRotationRows, "Style004Rotation", 22),
    Spin(308, "Offset:", "0,359,180", "Style004Offset", 180),
    Check(310, "Inverse rotation", "Style004Inverse", 0),
};

inline constexpr std::array kQuark = {
    Material(320, "Shadow:", 0x7F7F7F, "Style005ShadowColor"),
    Material(322, "Background:", 0xFFFFFF),
    Colour(324, "Outline:", "Style005OutlineColor", 0x333333),
    Spin(326, "Opacity:", "0,255,255", "Style005ShadowOpacity", 255),
    Spin(328, "Softness:", "0,40,20", "Style005Soft", 20),
    Spin(330, "Shadow offset:", "1,255,4", "Style005ShadowOffset", 4),
    Shadow8(332, "Style005ShadowDirection"),
    Check(334, "Shadow enable", "Style005ShadowEnable", 1),
    Check(335, "Outline enable", "Style005OutlineEnable", 1),
    Other(336, kControlFountainButton, "Fountain:", nullptr),
    Combo(338, "Rotation:", kRotationRows, "Style005Rotation", 22),
    Spin(340, "Horizontal offset:", "1,99,47", "Style005XOffset", 47),
    Spin(342, "Vertical offset:", "1,99,50", "Style005YOffset", 50),
    Spin(344, "Initial rotation:", "0,359,0", "Style005InitRotation", 0),
};

inline constexpr std::array kNeuralNetwork = {
    Material(355, "Shadow:", 0x7F7F7F, "Style006ShadowColor"),
    Material(357, "Background:", 0xFFFFFF),
    Colour(359, "Outline:", "Style006OutlineColor", 0x333333),
    Spin(361, "Opacity:", "0,255,255", "Style006ShadowOpacity", 255),
    Spin(363, "Softness:", "0,40,20", "Style006Soft", 20),
    Spin(365, "Shadow offset:", "1,255,4", "Style006ShadowOffset", 4),
    Shadow8(367, "Style006ShadowDirection"),
    Check(369, "Shadow enable", "Style006ShadowEnable", 1),
    Check(370, "Outline enable", "Style006OutlineEnable", 1),
    Spin(373, "Matrix:", "4,24,10", "Style006Matrix", 10),
    Spin(375, "Glare:", "0,140,70", "Style006Glare", 70),
    Spin(377, "Size:", "6,32,11", "Style006Size", 11),
    Spin(379, "Density:", "1,99,55", "Style006Density", 55),
    Spin(381, "Seed:", "100,32760,12055", "Style006Seed", 12055),
    GM5_FIVE_COLOURS(383, "006", 0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF),
    Spin(397, "Shade:", "1,100,70", "Style006Shade", 70),
};

// The four direction boxes of Arrows sit in a cross under one label; East is the left box.
inline constexpr std::array kArrows = {
    Material(408, "Shadow:", 0x7F7F7F, "Style007ShadowColor"),
    Material(410, "Background:", 0xFFFFFF),
    Colour(412, "Outline:", "Style007OutlineColor", 0x333333),
    Spin(414, "Opacity:", "0,255,255", "Style007ShadowOpacity", 255),
    Spin(416, "Softness:", "0,40,20", "Style007Soft", 20),
    Spin(418, "Shadow offset:", "1,255,4", "Style007ShadowOffset", 4),
    Shadow8(420, "Style007ShadowDirection"),
    Check(422, "Shadow enable", "Style007ShadowEnable", 1),
    Check(423, "Outline enable", "Style007OutlineEnable", 1),
    Spin(424, "Fill opacity:", "1,255,255", "Style007FillOpacity", 255),
    Spin(426, "Frames:", "2,32760,128", "Style007Frames", 128),
    Spin(428, "Drift:", "0,99,4", "Style007Drift", 4),
    Spin(430, "Size:", "10,96,50", "Style007Size", 50),
    Spin(432, "Density:", "1,200,96", "Style007Density", 96),
    Spin(434, "Seed:", "100,32760,11234", "Style007Seed", 11234),
    GM5_FIVE_COLOURS(436, "007", 0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF),
    Label(450, "Directions:"),
    Check(451, "", "Style007DirNorth", 1),
    Check(452, "", "Style007DirEast", 1),
    Check(453, "", "Style007DirSouth", 0),
    Check(454, "", "Style007DirWest", 0),
    Material(456, "Fill background:", 0xFFFFFF),
};

inline constexpr std::array kWaterside = {
    Material(467, "Fill:", 0xBD7E40),
    Material(469, "Shadow:", 0x7F7F7F, "Style008ShadowColor"),
    Colour(471, "Background:", "Style008Background", 0xFFFFFF),
    Colour(473, "Outline:", "Style008OutlineColor", 0x333333),
    Spin(475, "Opacity:", "0,255,255", "Style008FillOpacity", 255),
    Spin(477, "Opacity:", "0,255,255", "Style008ShadowOpacity", 255),
    Spin(479, "Frames:", "2,32760,40", "Style008Frames", 40),
    Spin(481, "Softness:", "0,40,20", "Style008Soft", 20),
    Spin(483, "Shadow offset:", "1,255,4", "Style008ShadowOffset", 4),
    Shadow8(485, "Style008ShadowDirection"),
    Check(487, "Shadow enable", "Style008ShadowEnable", 1),
    Check(488, "Outline enable", "Style008OutlineEnable", 1),
};

inline constexpr std::array kWavelet = {
    Material(500, "Shadow:", 0x7F7F7F, "Style009ShadowColor"),
    Material(502, "Background:", 0xFFFFFF),
    Colour(504, "Outline:", "Style009OutlineColor", 0x333333),
    Spin(508, "Opacity:", "0,255,255", "Style009ShadowOpacity", 255),
    Spin(510, "Frames:", "2,32760,32", "Style009Frames", 32),
    Spin(512, "Softness:", "0,40,20", "Style009Soft", 20),
    Spin(514, "Shadow offset:", "1,255,4", "Style009ShadowOffset", 4),
    Shadow8(516, "Style009ShadowDirection"),
    Check(518, "Shadow enable", "Style009ShadowEnable", 1),
    Check(519, "Outline enable", "Style009OutlineEnable", 1),
    Spin(524, "Glare:", "0,255,160", "Style009Glare", 160),
    Spin(526, "Size:", "10,36,10", "Style009Size", 10),
    Spin(528, "Seed:", "100,32760,12055", "Style009Seed", 12055),
    GM5_FIVE_COLOURS(530, "009", 0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF),
    Spin(544, "Shading:", "1,100,70", "Style009Shade", 70),
    Spin(546, "Amplitude:", "50,100,75", "Style009Amplitude", 75),
    Picker(548, kControlScroll2Picker, "Scroll:", "Style009Scroll", 1),
    Combo(550, "Wavelength:", "1;2;4;8", "Style009Wavelength", 2),
};

inline constexpr std::array kHeartbeat = {
    Material(561, "Fill:", 0xBD7E40),
    Material(563, "Shadow:", 0x7F7F7F, "Style010ShadowColor"),
    Colour(565, "Background:", "Style010Background", 0xFFFFFF),
    Colour(567, "Outline:", "Style010OutlineColor", 0x333333),
    Spin(569, "Opacity:", "0,255,255", "Style010FillOpacity", 255),
    Spin(571, "Opacity:", "0,255,255", "Style010ShadowOpacity", 255),
    Spin(573, "Frames:", "2,32760,64", "Style010Frames", 64),
    Spin(575, "Softness:", "0,40,20", "Style010Soft", 20),
    Spin(577, "Shadow offset:", "1,255,4", "Style010ShadowOffset", 4),
    Shadow8(579, "Style010ShadowDirection"),
    Check(581, "Shadow enable", "Style010ShadowEnable", 1),
    Check(582, "Outline enable", "Style010OutlineEnable", 1),
    Spin(583, "Wavelength:", "8,80,20", "Style010Wavesize", 20),
    Spin(585, "Wave height:", "1,99,60", "Style010Waveheight", 60),
};

inline constexpr std::array kOmni = {
    Material(596, "Shadow:", 0x7F7F7F, "Style011ShadowColor"),
    Material(598, "Background:", 0xFFFFFF),
    Colour(600, "Outline:", "Style011OutlineColor", 0x333333),
    Spin(602, "Opacity:", "0,255,255", "Style011ShadowOpacity", 255),
    Spin(604, "Softness:", "0,40,20", "Style011Soft", 20),
    Spin(606, "Shadow offset:", "1,255,4", "Style011ShadowOffset", 4),
    Shadow8(608, "Style011ShadowDirection"),
    Check(610, "Shadow enable", "Style011ShadowEnable", 1),
    Check(611, "Outline enable", "Style011OutlineEnable", 1),
    Other(612, kControlAnimationPicker, "Animation:", "Style011AnimPath"),
};

inline constexpr std::array kDiagonalFuse = {
    Colour(622, "Fill:", "Style012FillColor", 0x00CCFF),
    Material(624, "Shadow:", 0x7F7F7F, "Style012ShadowColor"),
    Material(626, "Background:", 0xFFFFFF),
    Colour(628, "Outline:", "Style012OutlineColor", 0x333333),
    Spin(630, "Opacity:", "0,255,255", "Style012FillOpacity", 255),
    Spin(632, "Opacity:", "0,255,255", "Style012ShadowOpacity", 255),
    Spin(634, "Frames:", "2,32760,64", "Style012Frames", 64),
    Spin(636, "Softness:", "0,40,20", "Style012Soft", 20),
    Spin(638, "Offset:", "1,255,4", "Style012ShadowOffset", 4),
    Picker(640, kControlScroll2Picker, "Scroll:", "Style012Scroll", 1),
    Shadow8(642, "Style012ShadowDirection"),
    Check(644, "Shadow enable", "Style012ShadowEnable", 1),
    Check(645, "Outline enable", "Style012OutlineEnable", 1),
    Spin(646, "Leaf size:", "1,64,12", "Style012Size", 12),
    Colour(648, "Back fill:", "Style012BackFillColor", 0x333333),
};

// Quark Outline: Quark's turning fountain drawn as the text's outline, without an outline colour.
inline constexpr std::array kQuarkOutline = {
    Material(659, "Fill:", 0xBD7E40),
    Material(661, "Shadow:", 0x7F7F7F, "Style013ShadowColor"),
    Material(663, "Background:", 0xFFFFFF),
    Spin(665, "Opacity:", "0,255,255", "Style013FillOpacity", 255),
    Spin(667, "Opacity:", "0,255,255", "Style013ShadowOpacity", 255),
    Spin(669, "Softness:", "0,40,20", "Style013Soft", 20),
    Spin(671, "Shadow offset:", "1,255,4", "Style013ShadowOffset", 4),
    Shadow8(673, "Style013ShadowDirection"),
    Check(675, "Shadow enable", "Style013ShadowEnable", 1),
    Combo(676, "Rotation:", kRotationRows, "Style013Rotation", 22),
    Spin(678, "Horizontal offset:", "1,99,50", "Style013XOffset", 50),
    Spin(680, "Vertical offset:", "1,99,50", "Style013YOffset", 50),
    Spin(682, "Initial rotation:", "0,359,0", "Style013InitRotation", 0),
};

// Zipper: leaves that close over the text like the teeth of a zip.
inline constexpr std::array kZipper = {
    Material(696, "Fill:", 0xBD7E40),
    Material(698, "Shadow:", 0x7F7F7F, "Style014ShadowColor"),
    Colour(700, "Background:", "Style014BackgroundColor", 0xFFFFFF),
    Colour(702, "Outline:", "Style014OutlineColor", 0x333333),
    Spin(704, "Opacity:", "0,255,255", "Style014FillOpacity", 255),
    Spin(706, "Opacity:", "0,255,255", "Style014ShadowOpacity", 255),
    Spin(708, "Frames:", "2,32760,64", "Style014Frames", 64),
    Spin(710, "Softness:", "0,40,20", "Style014Soft", 20),
    Spin(712, "Shadow offset:", "1,255,4", "Style014ShadowOffset", 4),
    Shadow8(714, "Style014ShadowDirection"),
    Check(716, "Shadow enable", "Style014ShadowEnable", 1),
    Check(717, "Outline enable", "Style014OutlineEnable", 1),
    Spin(718, "Leaf size:", "1,64,12", "Style014LeafSize", 12),
};

inline constexpr std::array kTracks = {
    Material(729, "Fill:", 0xBD7E40),
    Material(731, "Shadow:", 0x7F7F7F, "Style015ShadowColor"),
    Colour(733, "Background:", "Style015BackgroundColor", 0xFFFFFF),
    Colour(735, "Outline:", "Style015OutlineColor", 0x333333),
    Spin(737, "Fill opacity:", "0,255,255", "Style015FillOpacity", 255),
    Spin(739, "Shadow opacity:", "0,255,255", "Style015ShadowOpacity", 255),
    Spin(741, "Frames:", "2,32760,20", "Style015Frames", 20),
    Spin(743, "Softness:", "0,40,20", "Style015Soft", 20),
    Spin(745, "Shadow offset:", "1,255,4", "Style015ShadowOffset", 4),
    Shadow8(747, "Style015ShadowDirection"),
    Check(749, "Shadow enable", "Style015ShadowEnable", 1),
    Check(750, "Outline enable", "Style015OutlineEnable", 1),
    Combo(751, "Mode:",
          "Slide up;Slide down;Slide up and down;Slide left;Slide right;Slide left and right",
          "Style015Mode", 2),
    Combo(753, "Tracks:", "2;4;8;16;32;64;128;256", "Style015Tracks", 4),
    Spin(755, "Seed:", "1,32760,15595", "Style015Seed", 15595),
    Check(757, "Slow end", "Style015SlowEnd", 1),
    Spin(758, "Speeds:", "2,4,4", "Style015Speed", 4),
    Spin(760, "Bevel size:", "1,20,15", "Style015BevelSize", 15),
    Check(762, "Bevel edges", "Style015BevelEnable", 1),
};

inline constexpr std::array kConfetti = {
    Colour(772, "Shadow:", "Style016ShadowColor", 0x4C4C4C),
    Material(774, "Background:", 0xFFFFFF),
    Colour(776, "Outline:", nullptr, 0x333333),
    Spin(778, "Shadow opacity:", "0,255,255", nullptr, 0),
    Spin(780, "Frames:", "2,32760,64", "Style016Frames", 64),
    Spin(782, "Softness:", "0,40,20", "Style016Soft", 20),
    Spin(784, "Shadow offset:", "1,255,4", nullptr, 0),
    Picker(786, kControlShadowPicker, "Shadow direction:", nullptr, 7),
    Check(788, "Shadow enable", nullptr, 1),
    Check(789, "Outline enable", nullptr, 1),
    Spin(790, "Fill opacity:", "1,255,255", "Style016FillOpacity", 255),
    Spin(792, "Drift:", "0,99,4", "Style016Drift", 4),
    Spin(794, "Size:", "2,128,20", "Style016Size", 20),
    Spin(796, "Density:", "1,4096,128", "Style016Density", 128),
    Spin(798, "Seed:", "100,32760,10645", "Style016Seed", 10645),
    GM5_FIVE_COLOURS(800, "016", 0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF),
    Check(814, "Variable sizes", "Style016Variable", 1),
    Material(815, "Fill background:", 0xFFFFFF),
};

inline constexpr std::array kCandy = {
    Colour(826, "Shadow:", "Style017ShadowColor", 0x4C4C4C),
    Material(828, "Background:", 0xFFFFFF),
    Colour(830, "Outline:", nullptr, 0x333333),
    Spin(832, "Shadow opacity:", "0,255,255", nullptr, 0),
    Spin(834, "Frames:", "2,32760,64", "Style017Frames", 64),
    Spin(836, "Shadow softness:", "0,40,20", "Style017Soft", 60),
    Spin(838, "Shadow offset:", "1,255,4", nullptr, 0),
    Picker(840, kControlShadowPicker, "Shadow direction:", nullptr, 7),
    Check(842, "Shadow enable", nullptr, 1),
    Check(843, "Outline enable", nullptr, 1),
    Spin(844, "Fill opacity:", "1,255,255", "Style017FillOpacity", 255),
    Spin(846, "Drift:", "0,99,4", "Style017Drift", 4),
    Spin(848, "Size:", "2,128,28", "Style017Size", 28),
    Spin(850, "Density:", "1,4096,64", "Style017Density", 64),
    Spin(852, "Seed:", "100,32760,10646", "Style017Seed", 10646),
    GM5_FIVE_COLOURS(854, "017", 0xFF0000, 0x00FF00, 0x00CCFF, 0x0033CC, 0x0066FF),
    Check(868, "Variable sizes", "Style017Variable", 1),
    Material(869, "Fill background:", 0xFFFFFF),
    Picker(871, kControlScroll4Picker, "Scroll:", "Style017Scroll", 2),
    Spin(873, "Warp:", "30,120,60", "Style017ObjectSoft", 60),
};

inline constexpr std::array kRattle = {
    Material(884, "Fill:", 0xBD7E40),
    Material(886, "Shadow:", 0x7F7F7F, "Style018ShadowColor"),
    Material(888, "Background:", 0xFFFFFF),
    Colour(890, "Outline:", "Style018OutlineColor", 0x333333),
    Spin(892, "Opacity:", "0,255,255", "Style018FillOpacity", 255),
    Spin(894, "Opacity:", "0,255,255", "Style018ShadowOpacity", 255),
    Spin(896, "Frames:", "2,32760,64", "Style018Frames", 64),
    Spin(898, "Softness:", "0,40,10", "Style018Soft", 20),
    Spin(900, "Shadow offset:", "1,255,4", "Style018ShadowOffset", 4),
    Shadow8(902, "Style018ShadowDirection"),
    Check(904, "Shadow enable", "Style018ShadowEnable", 1),
    Check(905, "Outline enable", "Style018OutlineEnable", 1),
    Spin(906, "Seed:", "100,32760,1017", "Style018Seed", 19374),
    Spin(908, "Horizontal displacement:", "1,16,6", "Style018HDisplace", 9),
    Spin(910, "Vertical displacement:", "1,16,6", "Style018VDisplace", 9),
    Combo(912, "Mode:", "Nervous;Happy;Calm;Orbit CW;Orbit CCW;Infinity", "Style018Mode", 0),
};

inline constexpr std::array kUnpluggedTv = {
    Material(923, "Shadow:", 0x7F7F7F, "Style019ShadowColor"),
    Material(925, "Background:", 0x202020),
    Colour(927, "Outline:", "Style019OutlineColor", 0x333333),
    Spin(929, "Opacity:", "0,255,255", "Style019ShadowOpacity", 255),
    Spin(931, "Softness:", "0,40,20", "Style019Soft", 20),
    Spin(933, "Shadow offset:", "1,255,4", "Style019ShadowOffset", 4),
    Shadow8(935, "Style019ShadowDirection"),
    Check(937, "Shadow enable", "Style019ShadowEnable", 1),
    Check(938, "Outline enable", "Style019OutlineEnable", 1),
    Spin(941, "Frames:", "2,32760,48", "Style019Frames", 48),
    Material(943, "Color 1:", 0xFF0000),
    Material(945, "Color 2:", 0x00FF00),
    Material(947, "Color 3:", 0x00CCFF),
    Material(949, "Color 4:", 0x0033CC),
    Material(951, "Color 5:", 0x0066FF),
    Check(953, "Enable", "Style019FillEnable3", 1),
    Check(954, "Enable", "Style019FillEnable4", 1),
    Check(955, "Enable", "Style019FillEnable5", 1),
    Colour(956, "Dot color:", "Style019DotColor", 0xFFFFFF),
    Check(958, "Use this dot color", "Style019DotEnable", 1),
    Check(959, "Use square dot", "Style019DotSquare", 0),
};

// Tram Lines: the text cut into bars that slide in like passing trams.
inline constexpr std::array kTramLines = {
    Material(969, "Fill:", 0xBD7E40),
    Material(971, "Shadow:", 0x7F7F7F, "Style020ShadowColor"),
    Material(973, "Background:", 0xFFFFFF),
    Colour(975, "Outline:", "Style020OutlineColor", 0x333333),
    Spin(977, "Opacity:", "0,255,255", "Style020FillOpacity", 255),
    Spin(979, "Opacity:", "0,255,255", "Style020ShadowOpacity", 255),
    Spin(981, "Softness:", "0,40,20", "Style020Soft", 20),
    Spin(983, "Shadow offset:", "1,255,4", "Style020ShadowOffset", 4),
    Shadow8(985, "Style020ShadowDirection"),
    Check(987, "Shadow enable", "Style020ShadowEnable", 1),
    Check(988, "Outline enable", "Style020OutlineEnable", 1),
    Spin(989, "Bars:", "2,64,8", "Style020Barcount", 8),
    Spin(991, "Tile step:", "1,32,4", "Style020Tilestep", 4),
    Check(993, "Vertical bars", "Style020Vertical", 0),
};

#undef GM5_FIVE_COLOURS

// The main dialog's own controls. The Effect box's rows are the effect names, filled at start.
inline constexpr std::array kMainDialog = {
    Other(1, kControlOther, "Build", nullptr),
    Other(2, kControlOther, "Cancel", nullptr),
    Other(9, kControlOther, "Help", nullptr),
    Check(10, "Tr&ue color", "Truecolour", 1),
    Spin(11, "Delay:", "1,1000,10", "MainDelay", 5),
    Other(12, kControlOther, "", nullptr),
    Combo(13, "Palette:",
          "Black and white;Sixteen-color Windows;32-color orthogonal;64-color orthogonal;"
          "128-color orthogonal;216-color safe;256-color orthogonal;256-color with gray;"
          "256 gray levels",
          "MainPalette", 6),
    Check(14, "&Custom palette", nullptr, 0),
    Check(15, "&Dither", "MainDither", 0),
    Other(16, kControlOther, "Re&gister", nullptr),
    Other(17, kControlOther, "", nullptr),
    Other(18, kControlOther, "A&bout", nullptr),
    Check(19, "&Supercompress", "MainSupercompress", 0),
    Check(20, "Add comme&nt", "AddDescriptiveCommentBlock", 1),
    Check(21, "&Mask background", "MainMaskBackground", 1),
    Check(22, "Animat&ed", "MainRolling", 1),
    Spin(23, "Pause:", "1,10000,10", "MainPause", 100),
    Other(24, kControlOther, "&Test", nullptr),
    Other(25, kControlOther, "", nullptr),
    Check(35, "&Transparent", "MainTransparent", 0),
    Other(36, kControlOther, "Open/Save", nullptr),
    Check(51, "&Antialias", "MainAntialias", 1),
    PageControl{52, kControlTextField, "Text:", nullptr, "MainText", 0, 0},
    PageControl{53, kControlFontBox, "Font:", nullptr, "MainFontName", 0, 0},
    Check(54, "&Bold", "MainFontBold", 1),
    Check(55, "&Italic", "MainFontItalic", 0),
    Spin(57, "Size:", "4,400,24", "MainFontSize", 92),
    Combo(58, "Effect:", nullptr, "MainEffect", 12),
    Spin(59, "Pad:", "0,512,0", "MainPadding", 0),
    Spin(61, "Character space:", "50,150,100", "MainFontSpace", 90),
    Check(62, "Alpha transparency", "MainAlphaTrans", 0),
    Check(63, "Alpha background", "UseAlphaGreyBack", 1),
    Check(64, "Fit sample in window", "FitSampleInWindow", 1),
};

}  // namespace page_rows

// The page tables by style number (0 to 20).
inline constexpr std::array<PageTable, 21> kPageTables = {{
    {0, page_rows::kSimple.data(), page_rows::kSimple.size()},
    {1, page_rows::kRing.data(), page_rows::kRing.size()},
    {2, page_rows::kSnow.data(), page_rows::kSnow.size()},
    {3, page_rows::kStars.data(), page_rows::kStars.size()},
    {4, page_rows::kMachine.data(), page_rows::kMachine.size()},
    {5, page_rows::kQuark.data(), page_rows::kQuark.size()},
    {6, page_rows::kNeuralNetwork.data(), page_rows::kNeuralNetwork.size()},
    {7, page_rows::kArrows.data(), page_rows::kArrows.size()},
    {8, page_rows::kWaterside.data(), page_rows::kWaterside.size()},
    {9, page_rows::kWavelet.data(), page_rows::kWavelet.size()},
    {10, page_rows::kHeartbeat.data(), page_rows::kHeartbeat.size()},
    {11, page_rows::kOmni.data(), page_rows::kOmni.size()},
    {12, page_rows::kDiagonalFuse.data(), page_rows::kDiagonalFuse.size()},
    {13, page_rows::kQuarkOutline.data(), page_rows::kQuarkOutline.size()},
    {14, page_rows::kZipper.data(), page_rows::kZipper.size()},
    {15, page_rows::kTracks.data(), page_rows::kTracks.size()},
    {16, page_rows::kConfetti.data(), page_rows::kConfetti.size()},
    {17, page_rows::kCandy.data(), page_rows::kCandy.size()},
    {18, page_rows::kRattle.data(), page_rows::kRattle.size()},
    {19, page_rows::kUnpluggedTv.data(), page_rows::kUnpluggedTv.size()},
    {20, page_rows::kTramLines.data(), page_rows::kTramLines.size()},
}};

inline constexpr PageTable kMainDialogTable = {-1, page_rows::kMainDialog.data(),
                                               page_rows::kMainDialog.size()};

// The label of a control, at id + 1: every captioned control but checks and labels has one.
constexpr int HasLabel(const PageControl& c) {
  return c.caption && c.caption[0] && c.kind != kControlCheckBox && c.kind != kControlLabel &&
         c.kind != kControlOther;
}
constexpr int HasUpDown(const PageControl& c) {
  return c.kind == kControlSpinEdit || c.kind == kControlSignedSpinEdit;
}

// The number of ids a page's control list holds: controls, labels and updowns.
constexpr size_t PageIdCount(const PageTable& page) {
  size_t n = 0;
  for (int32_t i = 0; i < page.count; ++i)
    n += 1 + HasLabel(page.controls[i]) + HasUpDown(page.controls[i]);
  return n;
}

// The page's ids ended by 0: each control, then its label, then its updown partner.
template <size_t N>
constexpr std::array<int32_t, N + 1> DerivePageIds(const PageTable& page) {
  std::array<int32_t, N + 1> ids{};
  size_t n = 0;
  for (int32_t i = 0; i < page.count; ++i) {
    const PageControl& c = page.controls[i];
    ids[n++] = c.id;
    if (HasLabel(c)) ids[n++] = c.id + 1;
    if (HasUpDown(c)) ids[n++] = c.id + 10000;
  }
  return ids;
}

template <int Style>
inline constexpr auto kPageIds = DerivePageIds<PageIdCount(kPageTables[Style])>(kPageTables[Style]);

// Compile-time checks of the tables: page ids in 100..1198, labels included, none used twice
// across all pages, and main dialog ids below 100.
constexpr int PageTablesAreConsistent() {
  std::array<uint8_t, 1200> used{};
  for (const PageTable& page : kPageTables) {
    for (int32_t i = 0; i < page.count; ++i) {
      const PageControl& c = page.controls[i];
      const int32_t last = c.id + (HasLabel(c) ? 1 : 0);
      if (c.id < 100 || last > 1198) return 0;
      for (int32_t id = c.id; id <= last; ++id)
        if (used[id]++) return 0;
    }
  }
  for (int32_t i = 0; i < kMainDialogTable.count; ++i)
    if (kMainDialogTable.controls[i].id < 1 || kMainDialogTable.controls[i].id > 99) return 0;
  return 1;
}
static_assert(PageTablesAreConsistent(), "page ids collide or leave their range");

// The control with `id` among the pages and the main dialog, or null.
const PageControl* FindPageControl(int32_t id);
// The page control (or main dialog control) that mirrors the setting `key`, or null.
const PageControl* FindControlForKey(const char* key);
