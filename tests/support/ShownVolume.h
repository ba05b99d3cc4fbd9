#pragma once

#include "VdsPageSession.h"

#include <fast/fast.h>

#include <QString>

#include <string>
#include <vector>

// A volume FAST holds, shown on a cloud page over the fixture's emulator, for the tree's two
// removals: "unmountVds" takes the whole volume, which then holds two files; "deleteFile" takes
// its first file, which is then its only one, so that the volume goes as well.
struct ShownVolume
{
    ShownVolume(FastEmulatorFixture& fixture, const QString& removal, const QString& projectDir = {});

    // Asks the tree for the removal, as its context menu does.
    void remove();

    QString removal;
    std::string vdsId;
    std::vector<fast::VdsFile> files;
    VdsPageSession page;
};
