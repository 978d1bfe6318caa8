#include "demo-track/Melodies.h"

#include "demo-track/Harmony.h"

namespace vantor::demo::Melodies {

namespace {

constexpr int A3 = pitch("A3"), D4 = pitch("D4"), E4 = pitch("E4"), Fs4 = pitch("F#4"), G4 = pitch("G4"),
              A4 = pitch("A4"), Bb4 = pitch("Bb4"), B4 = pitch("B4"), C5 = pitch("C5"), Cs5 = pitch("C#5"),
              D5 = pitch("D5"), E5 = pitch("E5"), F5 = pitch("F5"), Fs5 = pitch("F#5"), G5 = pitch("G5"),
              A5 = pitch("A5"), Bb5 = pitch("Bb5"), B5 = pitch("B5"), D6 = pitch("D6"), E6 = pitch("E6"),
              Fs6 = pitch("F#6"), A6 = pitch("A6");

// One line is one bar of four beats.

constexpr MelodyStep introductionSteps[] = {
    {rest, 2.5}, {A5, 0.5},   {Fs5, 1.0},                                     //
    {D5, 2.0},   {rest, 1.0}, {B4, 0.5},  {D5, 0.5},                          //
    {rest, 0.5}, {Fs5, 0.75}, {A5, 0.75}, {D5, 1.0},   {Cs5, 0.5}, {D5, 0.5}, //
    {E5, 1.5},   {B4, 0.5},   {D5, 1.0},  {rest, 1.0},
};

constexpr MelodyStep themeSteps[] = {
    {Fs5, 0.75}, {E5, 0.75},  {A4, 1.0},  {rest, 0.5}, {D5, 0.5},  {E5, 0.5},  //
    {Cs5, 1.5},  {E5, 0.5},   {B4, 1.0},  {A4, 1.0},                           //
    {Fs5, 0.75}, {A5, 0.75},  {D5, 1.0},  {rest, 0.5}, {Cs5, 0.5}, {D5, 0.5},  //
    {B4, 2.5},   {rest, 0.5}, {A4, 0.5},  {B4, 0.5},                           //
    {G5, 0.75},  {Fs5, 0.75}, {B4, 1.0},  {rest, 0.5}, {E5, 0.5},  {Fs5, 0.5}, //
    {A5, 1.5},   {E5, 0.5},   {Cs5, 1.0}, {E5, 1.0},                           //
    {D5, 0.75},  {A5, 0.75},  {B5, 1.5},  {A5, 0.5},   {Fs5, 0.5},             //
    {E5, 1.5},   {D5, 0.5},   {B4, 1.0},  {rest, 1.0},
};

constexpr MelodyStep variationSteps[] = {
    {rest, 0.5}, {D5, 0.5},   {Cs5, 0.5}, {B4, 0.5},   {Fs5, 1.0}, {Cs5, 1.0}, //
    {D5, 1.5},   {B4, 0.5},   {G4, 1.0},  {rest, 1.0},                         //
    {rest, 0.5}, {A5, 0.5},   {Fs5, 0.5}, {E5, 0.5},   {D5, 1.0},  {A4, 1.0},  //
    {Cs5, 1.5},  {E5, 0.5},   {A4, 1.0},  {rest, 1.0},                         //
    {G5, 0.75},  {Fs5, 0.75}, {E5, 0.5},  {D5, 1.0},   {B4, 1.0},              //
    {B5, 1.5},   {A5, 0.5},   {D5, 1.0},  {rest, 1.0},                         //
    {A5, 0.75},  {Fs5, 0.75}, {E5, 0.5},  {Cs5, 1.0},  {E5, 1.0},              //
    {D5, 1.5},   {E5, 0.5},   {B4, 1.0},  {rest, 1.0},
};

/// Bells that answer in the bars where the lead rests.
constexpr MelodyStep variationAnswerSteps[] = {
    {rest, 4.0},                                    //
    {rest, 2.5}, {B5, 0.5},  {D6, 0.5}, {Fs6, 0.5}, //
    {rest, 4.0},                                    //
    {rest, 2.5}, {E6, 0.5},  {B5, 0.5}, {A5, 0.5},  //
    {rest, 4.0},                                    //
    {rest, 2.5}, {Fs6, 0.5}, {D6, 0.5}, {B5, 0.5},  //
    {rest, 4.0},                                    //
    {rest, 2.0}, {A6, 0.5},  {E6, 0.5}, {D6, 0.5},  {B5, 0.5},
};

constexpr MelodyStep breakdownSteps[] = {
    {Fs5, 2.0}, {D5, 1.0}, {A4, 1.0},              //
    {Fs5, 1.5}, {E5, 0.5}, {D5, 2.0},              //
    {A5, 1.5},  {F5, 0.5}, {D5, 1.0},   {C5, 1.0}, //
    {D5, 1.0},  {E5, 1.0}, {rest, 2.0},
};

constexpr MelodyStep repriseSteps[] = {
    {Fs5, 0.75}, {E5, 0.75},  {A4, 1.0},   {rest, 0.5}, {D5, 0.5},  {E5, 0.5},  //
    {Cs5, 1.0},  {D5, 0.25},  {Cs5, 0.25}, {E5, 0.5},   {B4, 1.0},  {A4, 1.0},  //
    {Fs5, 0.75}, {A5, 0.75},  {D5, 1.0},   {rest, 0.5}, {Cs5, 0.5}, {D5, 0.5},  //
    {B4, 2.0},   {D5, 0.5},   {rest, 0.5}, {A4, 0.5},   {B4, 0.5},              //
    {G5, 0.75},  {Fs5, 0.75}, {B4, 1.0},   {rest, 0.5}, {E5, 0.5},  {Fs5, 0.5}, //
    {A5, 1.0},   {B5, 0.25},  {A5, 0.25},  {E5, 0.5},   {Cs5, 1.0}, {E5, 1.0},  //
    {D5, 0.75},  {G5, 0.75},  {Bb5, 1.5},  {A5, 0.5},   {G5, 0.5},              //
    {Fs5, 1.0},  {E5, 2.0},   {A4, 0.5},   {B4, 0.5},
};

constexpr MelodyStep repriseSecondSteps[] = {
    {A4, 0.75},  {A4, 0.75},  {Fs4, 1.0},  {rest, 0.5}, {Fs4, 0.5}, {A4, 0.5},  //
    {A4, 1.5},   {A4, 0.5},   {E4, 2.0},                                        //
    {D5, 0.75},  {D5, 0.75},  {A4, 1.0},   {rest, 0.5}, {A4, 0.5},  {Fs4, 0.5}, //
    {G4, 2.5},   {rest, 0.5}, {Fs4, 0.5},  {G4, 0.5},                           //
    {B4, 0.75},  {B4, 0.75},  {G4, 1.0},   {rest, 0.5}, {B4, 0.5},  {B4, 0.5},  //
    {Cs5, 2.0},  {A4, 1.0},   {Cs5, 1.0},                                       //
    {Bb4, 0.75}, {D5, 0.75},  {E5, 1.5},   {D5, 1.0},                           //
    {D5, 1.0},   {B4, 1.5},   {rest, 1.5},
};

constexpr MelodyStep endingSteps[] = {
    {A3, 0.5}, {D4, 0.5},  {E4, 0.5}, {Fs4, 0.5}, {A4, 0.5}, {D5, 0.5}, {E5, 0.5}, {Fs5, 0.5}, //
    {A5, 1.0}, {Fs5, 1.0}, {D5, 2.0},
};

} // namespace

std::span<const MelodyStep> introduction() {
    return introductionSteps;
}
std::span<const MelodyStep> theme() {
    return themeSteps;
}
std::span<const MelodyStep> variation() {
    return variationSteps;
}
std::span<const MelodyStep> variationAnswer() {
    return variationAnswerSteps;
}
std::span<const MelodyStep> breakdown() {
    return breakdownSteps;
}
std::span<const MelodyStep> reprise() {
    return repriseSteps;
}
std::span<const MelodyStep> repriseSecond() {
    return repriseSecondSteps;
}
std::span<const MelodyStep> ending() {
    return endingSteps;
}

} // namespace vantor::demo::Melodies
