#pragma once

#include <QString>
#include <array>
#include <optional>

namespace vinora {

// The catalogue row of a found disc, as the file and track list windows are opened with it.
struct FoundDisc
{
    int number = 0;
    QString name;
    QString album; // audio discs
    int discs = 1;
    std::array<QString, 6> ids; // ДискID1..ДискID6, empty where the disc has no list
};

// The disc of `number` in the computer catalogue, or in the audio one for `tracks` (the first
// row of that number); nothing when no disc has the number any more.
std::optional<FoundDisc> readFoundDisc(const QString& mainDatabase, bool tracks, int number);

} // namespace vinora
