#include <fast/client/VdsDescriptorParser.h>

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>

#include <QtTest>

// FAST's bodies come from another process and may be anything. Callers are prepared for the
// POCO exceptions named here and nothing else.
namespace {

const char* const kVolumes = R"([{"id":"1","url":"s3://b/c"},{"id":2,"url":"/d/e.vds"},{}])";

// "Kind: message" for what the entry point threw on the input, "" for nothing.
QString run(const QString& call, const std::string& input)
{
    try {
        if (call == "volumes")
            fast::parseVdsInfos(input, "");
        else if (call == "files")
            fast::parseVdsInfos(kVolumes, input);
        else if (call == "value")
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
    } catch (const std::exception& error) {
        return QString("unexpected ") + typeid(error).name() + ": " + error.what();
    } catch (...) {
        return "unexpected non-standard exception";
    }
}

} // namespace

class TestBadInput : public QObject
{
    Q_OBJECT

private slots:
    void irregularShapesThrowTheDocumentedExceptions_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("thrown");

        const QString badCast = "^BadCast: Can not convert \\S+ to \\S+\\.$";
        const QString null = "^InvalidAccess: Can not convert empty value\\.$";
        QTest::newRow("listing is an object") << "volumes" << "{}" << badCast;
        QTest::newRow("value of an array") << "value" << "[1]" << badCast;
        QTest::newRow("volume id is null") << "volumes" << R"([{"id":null}])" << null;
        QTest::newRow("value is null") << "value" << R"({"id":null})" << null;
        QTest::newRow("volume is not an object") << "volumes" << "[1]" << "^NullPointer: ";
        QTest::newRow("file entry is null") << "files" << "[null]" << "^NullPointer: ";
        // The parser takes only an object or an array as the root.
        QTest::newRow("root is null") << "files" << " null" << "^JSON: ";
        QTest::newRow("number out of range") << "range" << R"({"properties":1e400})" << "^JSON: ";
    }

    void irregularShapesThrowTheDocumentedExceptions()
    {
        QFETCH(QString, call);
        QFETCH(QString, input);
        QFETCH(QString, thrown);
        const QString actual = run(call, input.toStdString());
        QVERIFY2(QRegularExpression(thrown).match(actual).hasMatch(), qPrintable(actual));
    }
};

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_badinput.moc"
