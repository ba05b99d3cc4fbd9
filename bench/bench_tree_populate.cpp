// OsduTreeModel::populate against building the same items in a bare QStandardItemModel, and
// addFile into a tree of 1,000 volumes.

#include "RatioReporter.h"

#include <fast/osdu/OsduTreeModel.h>
#include <fast/trees/VdsTreeModel.h>

#include <QCoreApplication>
#include <QStandardItemModel>

namespace {

constexpr int kDatasets = 1000;
constexpr int kFilesPerDataset = 5;

fast::VdsModel dataset(int d)
{
    fast::VdsModel record(QString("osdu:dataset--FileCollection:%1").arg(d), QString("Survey %1").arg(d),
                          "osdu:wks:dataset--FileCollection.Bluware.OpenVDS:1.0.0",
                          QString("Seismic survey number %1").arg(d), "vds" + std::to_string(d),
                          "https://bucket.example/survey-" + std::to_string(d), {});
    for (int f = 0; f < kFilesPerDataset; ++f)
        record.files.push_back({"file" + std::to_string(d) + "-" + std::to_string(f), "mounted-" + std::to_string(f)});
    return record;
}

void osduTreePopulate(benchmark::State& state)
{
    fast::OsduTreeModel model;
    for (int d = 0; d < kDatasets; ++d)
        model.addVds(dataset(d));
    for (auto _ : state)
        model.populate();
}

// The same rows, cells, texts, roles and flags, built directly.
void bareModelBuild(benchmark::State& state)
{
    QStandardItemModel model;
    model.setHorizontalHeaderLabels({"Name", "Data", "", ""});
    QList<fast::VdsModel> records;
    for (int d = 0; d < kDatasets; ++d)
        records.append(dataset(d));
    const auto cell = [](const QString& text, int d, int f) {
        auto* item = new QStandardItem(text);
        item->setEditable(false);
        item->setSelectable(false);
        item->setData(d, Qt::UserRole + 1);
        item->setData(f, Qt::UserRole + 2);
        return item;
    };
    const auto row = [&](const QStringList& texts, int d, int f) {
        QList<QStandardItem*> items;
        for (int c = 0; c < 4; ++c)
            items.append(cell(c < texts.size() ? texts[c] : QString(), d, f));
        return items;
    };
    for (auto _ : state) {
        model.removeRows(0, model.rowCount());
        for (int d = 0; d < records.size(); ++d) {
            const fast::VdsModel& record = records[d];
            QList<QStandardItem*> top = row({record.name, record.description}, d, -1);
            top[2]->setData(true, Qt::UserRole + 3);
            top[3]->setData(true, Qt::UserRole + 3);
            QList<QStandardItem*> files = row({"Files"}, d, -1);
            top[0]->appendRow(files);
            for (int f = 0; f < static_cast<int>(record.files.size()); ++f) {
                QList<QStandardItem*> file = row({QString::fromStdString(record.files[f].fileName),
                                                  QString::fromStdString(record.files[f].fileId)},
                                                 d, f);
                file[2]->setData(true, Qt::UserRole + 3);
                file[3]->setData(-1, Qt::UserRole + 2);
                files[0]->appendRow(file);
            }
            top[0]->appendRow(row({"Id", record.recordId}, d, -1));
            top[0]->appendRow(row({"Kind", record.kind}, d, -1));
            model.appendRow(top);
        }
    }
}

void addFileInto1000Volumes(benchmark::State& state)
{
    fast::VdsTreeModel model;
    for (int d = 0; d < kDatasets; ++d) {
        fast::VdsModel record = dataset(d);
        record.files.clear();
        model.addVds(record);
    }
    model.populate();
    int n = 0;
    for (auto _ : state) {
        const int d = n++ % kDatasets;
        model.addFile("vds" + std::to_string(d), "new" + std::to_string(n), "new-" + std::to_string(n));
    }
}

} // namespace

BENCHMARK(osduTreePopulate)->Unit(benchmark::kMillisecond);
BENCHMARK(bareModelBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(addFileInto1000Volumes)->Unit(benchmark::kMicrosecond)->Iterations(2000);

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    return runWithRatios(argc, argv,
                         {{"OsduTreeModel populate / bare QStandardItemModel, 1,000 x 5", "osduTreePopulate",
                           "bareModelBuild", 1.3}});
}
