#pragma once

#include <QString>
#include <chrono>
#include <functional>

namespace vinora {

class VolumeReader;

// Libraries that parse disc images (libcdio's CUE/BIN, NRG and TOC readers, libudf) are not
// safe with damaged files. Before the program lets them near an image, a child process does
// the same work on it; a crash, a signal, a non-zero exit or a hang there means the image is
// no disc. The verdict is kept per image file (path, size, times, inode) for the life of
// the process, so polling a drive does not start a process each time.
enum class ProbeKind {
    CdImage,   // medium, table of contents, volume identity and directories through libcdio
    UdfVolume, // the whole walk through libudf
};

// True when `work` ran to its end in the child for this image file (or did so before and
// the file has not changed since). Thread-safe.
bool imageSurvivesProbe(const QString& path, ProbeKind kind, const std::function<void()>& work);

// Runs `work` in a child process; true when it returned within `limit`. Not cached.
bool runInChild(const std::function<void()>& work, std::chrono::milliseconds limit);

// Visits every folder of a volume as a scan does (depth-first, as deep as a disc may
// nest) and reads the tag of every file named like an MP3.
void walkAsScan(VolumeReader& volume);

// The number of child processes started so far (for tests).
int imageProbeCount();
// Caps the time a probe may take (for fuzzers, whose inputs have a time limit of their own).
void capImageProbeTime(std::chrono::milliseconds limit);

} // namespace vinora
