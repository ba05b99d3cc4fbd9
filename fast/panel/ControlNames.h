#pragma once

// The object names of the panel's controls (QObject::objectName), by which scripts, tests and
// accessibility tools find a control without depending on the order of the widgets. A name
// is part of the panel's interface: renaming one breaks whatever looks it up.

namespace fast {

// FastTabWidget: the status line under the pages, the tabs and the three pages.
inline constexpr char kStatusLabel[] = "fastStatusLabel";
inline constexpr char kPageTabs[] = "fastPageTabs";
inline constexpr char kOsduPage[] = "fastOsduPage";
inline constexpr char kLocalPage[] = "fastLocalPage";
inline constexpr char kCloudPage[] = "fastCloudPage";

// VdsWidget: the path (local page) or URL (cloud page) field, the button beside it (Open VDS or
// Mount VDS) and the volume tree.
inline constexpr char kVdsPathField[] = "fastVdsPathField";
inline constexpr char kVdsActionButton[] = "fastVdsActionButton";
inline constexpr char kVdsTree[] = "fastVdsTree";

// OsduWidget.
inline constexpr char kOsduProviderChoice[] = "fastOsduProviderChoice";
inline constexpr char kOsduConnectButton[] = "fastOsduConnectButton";
// Shown while a sign-in waits for a person who has no browser that the panel could open.
inline constexpr char kOsduSignInAddress[] = "fastOsduSignInAddress";
inline constexpr char kOsduCopyAddressButton[] = "fastOsduCopyAddressButton";
inline constexpr char kOsduSearchInput[] = "fastOsduSearchInput";
inline constexpr char kOsduSearchButton[] = "fastOsduSearchButton";
inline constexpr char kOsduResultLabel[] = "fastOsduResultLabel";
inline constexpr char kOsduTree[] = "fastOsduTree";

// MountNewVolume.
inline constexpr char kMountFileNameLabel[] = "fastMountFileNameLabel";
inline constexpr char kMountFileNameField[] = "fastMountFileNameField";
inline constexpr char kMountSaveButton[] = "fastMountSaveButton";
inline constexpr char kMountCancelButton[] = "fastMountCancelButton";

} // namespace fast
