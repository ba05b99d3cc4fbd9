#pragma once

// Everything a host needs from the FAST panel library.

#include <fast/fastpanel_export.h>

#include <fast/client/Fast.h>
#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VdsDescriptors.h>
#include <fast/client/VdsMetaTypes.h>
#include <fast/client/VirtualDrive.h>
#include <fast/osdu/FileCollectionSearch.h>
#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/OsduSettingsKeys.h>
#include <fast/osdu/OsduTreeItem.h>
#include <fast/osdu/OsduTreeModel.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/BackgroundWork.h>
#include <fast/panel/CheckConnectionToFastWorker.h>
#include <fast/panel/ControlNames.h>
#include <fast/panel/FastTabWidget.h>
#include <fast/panel/FastWidget.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>
#include <fast/panel/VdsWidget.h>
#include <fast/trees/FastHeaderView.h>
#include <fast/trees/FastSortFilterProxyModel.h>
#include <fast/trees/FastTreeDelegate.h>
#include <fast/trees/FastTreeModel.h>
#include <fast/trees/FastTreeView.h>
#include <fast/trees/OsduTreeDelegate.h>
#include <fast/trees/OsduTreeView.h>
#include <fast/trees/TreeRoles.h>
#include <fast/trees/VdsTreeDelegate.h>
#include <fast/trees/VdsTreeModel.h>
#include <fast/trees/VdsTreeView.h>

#include <korvane/MDEventBus.h>
#include <osdu/HttpResponse.h>
#include <osdu/Settings.h>
