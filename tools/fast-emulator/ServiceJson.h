#pragma once

#include "FastService.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Object.h>

#include <initializer_list>
#include <string>
#include <utility>

// The service's JSON: its answers, the plug-in description and the mount request it takes.
namespace emulator {

inline const std::string kPluginName = "Korvane";

Reply json(int status, const Poco::Dynamic::Var& value);
// FAST's error answer: {"error": message}.
Reply error(int status, const std::string& message);
Poco::JSON::Object::Ptr object(std::initializer_list<std::pair<std::string, Poco::Dynamic::Var>> members);
Poco::JSON::Object::Ptr pluginDescription(const VolumeExtent& extent);

struct MountRequest
{
    std::string vdsId;
    std::string path;
    // With each Windows separator as FAST means it: the request doubles them.
    std::string linkPath;
};

// Throws std::invalid_argument with the reason when the mount body is not what FAST takes.
MountRequest readMountRequest(const std::string& body);

} // namespace emulator
