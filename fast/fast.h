#pragma once

// Everything a host needs from the FAST panel library.

#include <fast/fastpanel_export.h>

#include <fast/client/Fast.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VdsDescriptors.h>
#include <fast/client/VirtualDrive.h>
#include <fast/panel/CheckConnectionToFastWorker.h>

#include <korvane/MDEventBus.h>
#include <osdu/HttpResponse.h>
#include <osdu/Settings.h>
