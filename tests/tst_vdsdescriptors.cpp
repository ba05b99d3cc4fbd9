#include <fast/client/VdsDescriptorParser.h>

#include <Poco/JSON/Parser.h>

#include <QtTest>

using fast::VdsInfo;

namespace {

// "id=url[fileId:fileName,...]" per record, so that one table row states the whole result.
QString describe(const std::vector<VdsInfo>& infos)
{
    QStringList records;
    for (const VdsInfo& info : infos) {
        QStringList files;
        for (const fast::VdsFile& file : info.files)
            files << QString::fromStdString(file.fileId + ':' + file.fileName);
        records << QString::fromStdString(info.vdsId + '=' + info.url) + '[' + files.join(',')
                       + ']';
    }
    return records.join(' ');
}

std::string dimension(const char* name, const char* min, const char* max)
{
    return "\"" + std::string(name) + "\":{\"properties\":{\"min\":{\"default\":" + min
           + R"(},"max":{"default":)" + max + "}}}";
}

} // namespace

class TestVdsDescriptors : public QObject
{
    Q_OBJECT

private slots:
    void parseVdsInfosJoinsTheTwoListings_data()
    {
        QTest::addColumn<QString>("vdsList");
        QTest::addColumn<QString>("fileList");
        QTest::addColumn<QString>("expected");

        const QString oneFile = R"([{"id":"f","vdsId":"1","path":"/a.kv"}])";
        const QString oneVolume = R"([{"id":"1","url":"u"}])";
        QTest::newRow("null volume listing ignores files") << "null" << oneFile << "";
        QTest::newRow("empty volume listing ignores files") << "" << oneFile << "";
        QTest::newRow("null file listing") << oneVolume << "null" << "1=u[]";
        QTest::newRow("empty file listing") << oneVolume << "" << "1=u[]";
        QTest::newRow("empty entries are kept and match an empty vdsId")
            << R"([{},{"id":"2"},{"url":"u"}])" << R"([{"id":"f","vdsId":"","path":"/x.kv"}])"
            << "=[f:x.kv] 2=[] =u[]";
        QTest::newRow("numeric ids become decimal text")
            << R"([{"id":12,"url":"u"}])"
            << R"([{"id":7,"vdsId":12,"path":"/a"},{"id":8,"vdsId":"12","path":"/b"}])"
            << "12=u[7:a,8:b]";
        QTest::newRow("duplicated id: the first record gets the files in listing order")
            << R"([{"id":"1","url":"a"},{"id":"2","url":"b"},{"id":"1","url":"c"}])"
            << R"([{"id":"f2","vdsId":"1","path":"/two"},{"id":"f9","vdsId":"2","path":"/x"},)"
               R"({"id":"f1","vdsId":"1","path":"/one"}])"
            << "1=a[f2:two,f1:one] 2=b[f9:x] 1=c[]";
        QTest::newRow("unknown volume and incomplete entries are skipped")
            << oneVolume
            << R"([{"id":"a","vdsId":"9","path":"/a"},{"id":"b","path":"/b"},)"
               R"({"vdsId":"1","path":"/c"},{"id":"d","vdsId":"1"},)"
               R"({"id":"e","vdsId":"1","path":"/e"}])"
            << "1=u[e:e]";
        QTest::newRow("only the first path character goes")
            << R"([{"id":"1"}])"
            << R"([{"id":"a","vdsId":"1","path":"/cube.vds"},{"id":"b","vdsId":"1","path":""},)"
               R"({"id":"c","vdsId":"1","path":"x"},{"id":"d","vdsId":"1","path":"//d"}])"
            << "1=[a:cube.vds,b:,c:,d:/d]";
    }

    void parseVdsInfosJoinsTheTwoListings()
    {
        QFETCH(QString, vdsList);
        QFETCH(QString, fileList);
        QFETCH(QString, expected);
        QCOMPARE(describe(fast::parseVdsInfos(vdsList.toStdString(), fileList.toStdString())),
                 expected);
    }

    void parseVdsInfosPutsEveryFileOfALargeListingOnItsVolume()
    {
        // The last volumes repeat earlier ids and must stay empty; some files name no volume.
        const int volumes = 2000, distinctIds = 1900, files = 20000;
        const auto owner = [&](int f) { return (f * 7919) % (distinctIds + 50); };
        std::string vdsList, fileList;
        for (int v = 0; v < volumes; ++v)
            vdsList += ",{\"id\":\"v" + std::to_string(v % distinctIds) + "\",\"url\":\"u\"}";
        for (int f = 0; f < files; ++f)
            fileList += ",{\"id\":" + std::to_string(f) + ",\"vdsId\":\"v"
                        + std::to_string(owner(f)) + "\",\"path\":\"/" + std::to_string(f) + "\"}";
        vdsList[0] = fileList[0] = '[';

        const std::vector<VdsInfo> infos = fast::parseVdsInfos(vdsList + ']', fileList + ']');
        QCOMPARE(int(infos.size()), volumes);
        std::vector<std::size_t> next(volumes, 0);
        for (int f = 0; f < files; ++f) {
            if (owner(f) >= distinctIds)
                continue;
            const VdsInfo& info = infos[owner(f)];
            QVERIFY(next[owner(f)] < info.files.size());
            const fast::VdsFile& file = info.files[next[owner(f)]++];
            QCOMPARE(file.fileId, std::to_string(f));
            QCOMPARE(file.fileName, std::to_string(f));
        }
        for (int v = 0; v < volumes; ++v)
            QCOMPARE(infos[v].files.size(), next[v]);
    }

    void findVdsInfoReturnsTheFirstMatchInTheRange()
    {
        const auto entry = [](const std::string& json) {
            return Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
        };
        std::vector<VdsInfo> infos{{"a", "first", {}}, {"12", "", {}}, {"a", "second", {}}};
        const auto begin = infos.begin(), end = infos.end();
        QCOMPARE(fast::findVdsInfo(begin, end, entry(R"({"vdsId":"a"})")), begin);
        QCOMPARE(fast::findVdsInfo(begin + 1, end, entry(R"({"vdsId":"a"})")), begin + 2);
        QCOMPARE(fast::findVdsInfo(begin, end, entry(R"({"vdsId":12})")), begin + 1);
        QCOMPARE(fast::findVdsInfo(begin, end, entry(R"({"vdsId":"b"})")), end);
        QCOMPARE(fast::findVdsInfo(begin, begin + 2, entry(R"({"vdsId":"z"})")), begin + 2);
    }

    void jsonValueGivesTheValueAsText_data()
    {
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("expected");

        QTest::newRow("string") << "{\"k\":\"a \\\"b\\\"\"}" << "a \"b\"";
        QTest::newRow("integer") << R"({"other":1,"k":1500})" << "1500";
        QTest::newRow("negative") << R"({"k":-3})" << "-3";
        // Nested values must come back as JSON that the next level can parse.
        QTest::newRow("object") << R"({"k":{"b" : [1, {"c":"x"}]}})" << R"({"b":[1,{"c":"x"}]})";
        QTest::newRow("array") << R"({"k":[ [], {"c" : 2} ]})" << R"([[],{"c":2}])";
        QTest::newRow("missing key") << R"({"K":1})" << "";
        QTest::newRow("empty input") << "" << "";
    }

    void jsonValueGivesTheValueAsText()
    {
        QFETCH(QString, json);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromStdString(fast::jsonValue("k", json.toStdString())), expected);
    }

    void parseSubvolumeRangeReadsEachLevel_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("expected");

        const auto wrap = [](const std::string& dims) {
            return QString::fromStdString(
                R"({"type":"object","properties":{"subvolume":{"properties":{)" + dims + "}}}}");
        };
        QTest::newRow("full") << wrap(dimension("dim0", "0", "1500") + ","
                                      + dimension("dim1", "-20", "700") + ","
                                      + dimension("dim2", "4", "\"2000\""))
                              << "0 1500 -20 700 4 2000";
        QTest::newRow("dimension or default missing")
            << wrap(dimension("dim0", "1", "2") + "," + dimension("dim2", "5", "6")
                    + R"(,"dim1":{"properties":{"min":{"x":3},"max":{}}})")
            << "1 2   5 6";
        QTest::newRow("no subvolume") << R"({"properties":{"other":{}}})" << "     ";
        QTest::newRow("empty") << "" << "     ";
    }

    void parseSubvolumeRangeReadsEachLevel()
    {
        QFETCH(QString, description);
        QFETCH(QString, expected);
        const fast::SubvolumeRange range = fast::parseSubvolumeRange(description.toStdString());
        const std::string fields = range.dim0Min + ' ' + range.dim0Max + ' ' + range.dim1Min + ' '
                                   + range.dim1Max + ' ' + range.dim2Min + ' ' + range.dim2Max;
        QCOMPARE(QString::fromStdString(fields), expected);
    }
};

QTEST_GUILESS_MAIN(TestVdsDescriptors)
#include "tst_vdsdescriptors.moc"
