#pragma once

#include <QString>

#include <string>
#include <utility>
#include <vector>

namespace fast {

// A file that FAST has mounted from a volume into the virtual drive.
struct VdsFile
{
    std::string fileId;
    // The file's path in the virtual drive as FAST reports it, without its first character.
    std::string fileName;
};

// FAST's listing of one registered volume with the files mounted from it, in listing order.
struct VdsInfo
{
    std::string vdsId;
    // The URL (cloud) or local path (.vds file) the volume was registered under.
    std::string url;
    std::vector<VdsFile> files;
};

// The pages' and trees' record of one volume. The four texts are what the trees show: on the
// VDS pages only the name is filled; the OSDU page fills all four from the dataset record.
struct VdsModel
{
    VdsModel() = default;
    VdsModel(QString recordId, QString name, QString kind, QString description, std::string vdsId, std::string url,
             std::vector<VdsFile> files)
        : recordId(std::move(recordId)), name(std::move(name)), kind(std::move(kind)),
          description(std::move(description)), vdsId(std::move(vdsId)), url(std::move(url)), files(std::move(files))
    {
    }

    QString recordId;
    QString name;
    QString kind;
    QString description;
    // Empty while the volume is not registered in FAST.
    std::string vdsId;
    std::string url;
    std::vector<VdsFile> files;
};

// A volume's default extent from FAST's plug-in description: the JSON text of each value
// (normally a decimal number); empty where the description has none.
struct SubvolumeRange
{
    std::string dim0Min;
    std::string dim0Max;
    std::string dim1Min;
    std::string dim1Max;
    std::string dim2Min;
    std::string dim2Max;
};

} // namespace fast
