#include "ShownVolume.h"

#include "FastEmulatorFixture.h"

#include <fast/trees/FastTreeView.h>

namespace {

const std::string kUrl = "https://store.example/survey/cube";

std::vector<fast::VdsFile> mountFiles(FastEmulatorFixture& fixture, const std::string& vdsId, const QString& removal)
{
    const auto client = fixture.client();
    std::vector<fast::VdsFile> files{{client->mountFile(vdsId, "one", "", 0, 1, 0, 1, 0, 1)->getMessage(), "one"}};
    if (removal == "unmountVds")
        files.push_back({client->mountFile(vdsId, "two", "", 0, 1, 0, 1, 0, 1)->getMessage(), "two"});
    return files;
}

} // namespace

ShownVolume::ShownVolume(FastEmulatorFixture& fixture, const QString& removal, const QString& projectDir)
    : removal(removal), vdsId(fixture.client()->registerVds(kUrl)->getMessage()),
      files(mountFiles(fixture, vdsId, removal)), page(fixture, fast::VdsWidget::CLOUD_URL, projectDir)
{
    page.widget.init({"/project/one"});
}

void ShownVolume::remove()
{
    if (removal == "unmountVds")
        Q_EMIT page.widget.treeView()->unmountVds(vdsId, files);
    else
        Q_EMIT page.widget.treeView()->deleteFile(vdsId, files.front());
}
