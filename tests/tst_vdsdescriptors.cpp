// What the parsers make of FAST's listings and plug-in description, and what they throw on bodies
// of another shape. FAST's bodies come from another process and may be anything; callers are
// prepared for the POCO exceptions named here and nothing else (the fuzzers try the rest).

#include <fast/client/VdsDescriptorParser.h>
#include <fast/client/VdsInfoLookup_p.h>

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>
#include <Poco/JSON/Parser.h>

#include <QtTest>

using fast::VdsInfo;

namespace {

// "id=url[fileId:fileName,...]" per record, so that one comparison states the whole result.
QString describe(const std::vector<VdsInfo>& infos)
{
    QStringList records;
    for (const VdsInfo& info : infos) {
        QStringList files;
        for (const fast::VdsFile& file : info.files)
            files << QString::fromStdString(file.fileId + ':' + file.fileName);
        records << QString::fromStdString(info.vdsId + '=' + info.url) + '[' + files.join(',') + ']';
    }
    return records.join(' ');
}

const char* const kVolumes = R"([{"id":"1","url":"s3://b/c"},{"id":2,"url":"/d/e.vds"},{}])";

enum Call { Volumes, Files, Value, Range };

// "Kind: message" for what the entry point threw on the input, "" for nothing.
QString run(int call, const std::string& input)
{
    try {
        if (call == Volumes)
            fast::parseVdsInfos(input, "");
        else if (call == Files)
            fast::parseVdsInfos(kVolumes, input);
        else if (call == Value)
            fast::jsonValue("id", input);
        else
            fast::parseSubvolumeRange(input);
        return {};
    } catch (const Poco::JSON::JSONException& error) {
        return "JSON: " + QString::fromStdString(error.message());
    } catch (const Poco::BadCastException& error) {
        return "BadCast: " + QString::fromStdString(error.message());
    } catch (const Poco::InvalidAccessException& error) {
        return "InvalidAccess: " + QString::fromStdString(error.message());
    } catch (const Poco::NullPointerException& error) {
        return "NullPointer: " + QString::fromStdString(error.message());
    }
}

} // namespace

class VdsDescriptorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parseVdsInfosJoinsTheTwoListings()
    {
        const auto join = [](const char* vdsList, const char* fileList) {
            return describe(fast::parseVdsInfos(vdsList, fileList));
        };
        const char* const oneFile = R"([{"id":"f","vdsId":"1","path":"/a.kv"}])";
        const char* const oneVolume = R"([{"id":"1","url":"u"}])";
        QCOMPARE(join("null", oneFile), "");
        QCOMPARE(join("", oneFile), "");
        QCOMPARE(join(oneVolume, "null"), "1=u[]");
        QCOMPARE(join(oneVolume, ""), "1=u[]");
        // Entries without an id are kept, and an empty vdsId names the first of them.
        QCOMPARE(join(R"([{"id":"2"},{},{"url":"u"}])", R"([{"id":"f","vdsId":"","path":"/x"}])"), "2=[] =[f:x] =u[]");
        QCOMPARE(join(R"([{"id":12,"url":"u"}])",
                      R"([{"id":7,"vdsId":12,"path":"/a"},{"id":8,"vdsId":"12","path":"/b"}])"),
                 "12=u[7:a,8:b]");
        // Incomplete files and files of no listed volume are skipped; the rest lose the first
        // path character, whatever it is.
        QCOMPARE(join(oneVolume, R"([{"id":"b","path":"/b"},{"vdsId":"1","path":"/c"},{"id":"d","vdsId":"1"},)"
                                 R"({"id":"z","vdsId":"9","path":"/z"},)"
                                 R"({"id":"e","vdsId":"1","path":"/e.vds"},{"id":"f","vdsId":"1","path":""},)"
                                 R"({"id":"g","vdsId":"1","path":"x"}])"),
                 "1=u[e:e.vds,f:,g:]");
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
        QCOMPARE(fast::findVdsInfo(begin, begin + 2, entry(R"({"vdsId":"z"})")), begin + 2);
    }

    void jsonValueGivesTheValueAsText()
    {
        const auto value = [](const char* json) { return QString::fromStdString(fast::jsonValue("k", json)); };
        QCOMPARE(value("{\"k\":\"a \\\"b\\\"\"}"), "a \"b\"");
        QCOMPARE(value(R"({"other":1,"k":-1500})"), "-1500");
        // Nested values must come back as JSON that the next level can parse.
        QCOMPARE(value(R"({"k":{"b" : [1, {"c":"x"}]}})"), R"({"b":[1,{"c":"x"}]})");
        QCOMPARE(value(R"({"k":[ [], {"c" : 2} ]})"), R"([[],{"c":2}])");
        QCOMPARE(value(R"({"K":1})"), "");
        QCOMPARE(value(""), "");
    }

    void fastIdsAreShortWordsOfUrlSafeCharacters()
    {
        QVERIFY(fast::isFastId("azAZ09-_.:~") && fast::isFastId(std::string(256, 'z')));
        for (const std::string& refused : {std::string(), std::string("null"), std::string("a b"), std::string("a/b"),
                                           std::string("@"), std::string(257, 'a')})
            QVERIFY2(!fast::isFastId(refused), refused.c_str());
    }

    void parseSubvolumeRangeReadsEachLevelAndLeavesMissingOnesEmpty()
    {
        const fast::SubvolumeRange r = fast::parseSubvolumeRange(
            R"({"type":"object","properties":{"subvolume":{"properties":{)"
            R"("dim2":{"properties":{"min":{"default":4},"max":{"default":"2000"}}},)"
            R"("dim0":{"properties":{"min":{"default":0},"max":{"default":1500}}},)"
            R"("dim1":{"properties":{"min":{"default":-20},"max":{"other":700}}}}}}})");
        QCOMPARE(QString::fromStdString(r.dim0Min + ' ' + r.dim0Max + ' ' + r.dim1Min + ' ' + r.dim1Max + ' '
                                        + r.dim2Min + ' ' + r.dim2Max),
                 QString("0 1500 -20  4 2000"));
    }

    void irregularShapesThrowTheDocumentedExceptions_data()
    {
        QTest::addColumn<int>("call");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("thrown");
        const QString badCast = "^BadCast: Can not convert \\S+ to \\S+\\.$";
        const QString null = "^InvalidAccess: Can not convert empty value\\.$";
        const QString nullPointer = "^NullPointer: ", json = "^JSON: ";
        QTest::newRow("listing is an object") << int(Volumes) << "{}" << badCast;
        QTest::newRow("value of an array") << int(Value) << "[1]" << badCast;
        QTest::newRow("volume id is null") << int(Volumes) << R"([{"id":null}])" << null;
        QTest::newRow("value is null") << int(Value) << R"({"id":null})" << null;
        QTest::newRow("volume is not an object") << int(Volumes) << "[1]" << nullPointer;
        QTest::newRow("file entry is null") << int(Files) << "[null]" << nullPointer;
        // The parser takes only an object or an array as the root.
        QTest::newRow("root is null") << int(Files) << " null" << json;
        QTest::newRow("number out of range") << int(Range) << R"({"properties":1e400})" << json;
    }

    void irregularShapesThrowTheDocumentedExceptions()
    {
        QFETCH(int, call);
        QFETCH(QString, input);
        QFETCH(QString, thrown);
        const QString actual = run(call, input.toStdString());
        QVERIFY2(QRegularExpression(thrown).match(actual).hasMatch(), qPrintable(actual));
    }
};

QTEST_GUILESS_MAIN(VdsDescriptorsTest)
#include "tst_vdsdescriptors.moc"
