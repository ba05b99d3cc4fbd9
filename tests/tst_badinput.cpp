#include <fast/client/VdsDescriptorParser.h>

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>

#include <QtTest>

#include <random>

// FAST's bodies come from another process and may be anything. Callers are prepared for the
// POCO exceptions named here and nothing else.
namespace {

QString allowedKind(const Poco::Exception& error)
{
    if (dynamic_cast<const Poco::JSON::JSONException*>(&error))
        return "JSON";
    if (dynamic_cast<const Poco::BadCastException*>(&error))
        return "BadCast";
    if (dynamic_cast<const Poco::InvalidAccessException*>(&error))
        return "InvalidAccess";
    if (dynamic_cast<const Poco::NullPointerException*>(&error))
        return "NullPointer";
    return {};
}

const char* const kVolumes = R"([{"id":"1","url":"s3://b/c"},{"id":2,"url":"/d/e.vds"},{}])";

// The kind of what the entry point threw on the input ("" for nothing) and its message.
QPair<QString, QString> run(const QString& call, const std::string& input)
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
    } catch (const Poco::Exception& error) {
        const QString kind = allowedKind(error);
        return {kind.isEmpty() ? QString("unexpected ") + error.className() : kind,
                QString::fromStdString(error.message())};
    } catch (const std::exception& error) {
        return {QString("unexpected ") + typeid(error).name(), error.what()};
    } catch (...) {
        return {"unexpected non-standard exception", {}};
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
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("message");

        const QString badCast = "^Can not convert \\S+ to \\S+\\.$";
        const QString empty = "^Can not convert empty value\\.$";
        QTest::newRow("volume listing is an object") << "volumes" << "{}" << "BadCast" << badCast;
        QTest::newRow("file listing is an object")
            << "files" << R"({"a":1})" << "BadCast" << badCast;
        QTest::newRow("value of an array") << "value" << "[1]" << "BadCast" << badCast;
        QTest::newRow("volume id is null")
            << "volumes" << R"([{"id":null}])" << "InvalidAccess" << empty;
        QTest::newRow("value is null") << "value" << R"({"id":null})" << "InvalidAccess" << empty;
        QTest::newRow("volume is not an object") << "volumes" << "[1]" << "NullPointer" << "";
        QTest::newRow("file entry is null") << "files" << "[null]" << "NullPointer" << "";
        // The parser takes only an object or an array as the root.
        QTest::newRow("root is null") << "files" << " null" << "JSON" << "";
        QTest::newRow("not JSON") << "volumes" << "[{" << "JSON" << "";
        QTest::newRow("number out of range")
            << "range" << R"({"properties":1e400})" << "JSON" << "";
    }

    void irregularShapesThrowTheDocumentedExceptions()
    {
        QFETCH(QString, call);
        QFETCH(QString, input);
        QFETCH(QString, kind);
        QFETCH(QString, message);
        const auto thrown = run(call, input.toStdString());
        QCOMPARE(thrown.first, kind);
        QVERIFY2(QRegularExpression(message).match(thrown.second).hasMatch(),
                 qPrintable(thrown.second));
    }

    void arbitraryBytesThrowOnlyTheDocumentedExceptions()
    {
        const std::string seeds[] = {
            kVolumes,
            R"([{"id":"f1","vdsId":"1","path":"/a.kv"},{"id":3,"vdsId":2,"path":"/b"}])",
            R"({"properties":{"subvolume":{"properties":{"dim0":{"properties":)"
            R"({"min":{"default":0},"max":{"default":1500}}}}}}})"};
        const std::string values[] = {"null", "1e400", "-", "99999999999999999999999", "1.5",
                                      "[]", "{}", "true", "\"\\u0000\"", "\"\\ud800\"", "0x1",
                                      "-0", "\"\xff\xfe\"", "18446744073709551616",
                                      "-9223372036854775809"};
        const std::string alphabet = std::string("{}[]\",:\\-+.eE019nul tf\xff") + '\0';
        std::mt19937 random(20240611u);
        const auto below = [&random](std::size_t n) { return std::size_t(random() % n); };
        const auto value = [&] { return values[below(std::size(values))]; };

        QMap<QString, int> seen;
        for (int i = 0; i < 4000; ++i) {
            const std::string& seed = seeds[below(std::size(seeds))];
            std::string input;
            if (i % 5 == 0) {
                for (std::size_t n = below(48); n > 0; --n)
                    input += char(below(256));
            } else if (i % 5 == 1) {
                input = seed.substr(0, below(seed.size()));
            } else if (i % 5 == 2) {
                input = seed;
                for (std::size_t n = 1 + below(4); n > 0; --n)
                    input[below(input.size())] = alphabet[below(alphabet.size())];
            } else if (i % 5 == 3) {
                input = "[{\"id\":" + value() + ",\"vdsId\":" + value() + ",\"path\":" + value()
                        + ",\"url\":" + value() + "}]";
            } else {
                // Below and past the parser's depth limit, closed or not.
                const std::size_t depth = 1 + below(300);
                input = std::string(depth, '[') + std::string(depth - below(2), ']');
            }
            if (below(3) == 0)
                input = "{\"id\":" + input + ",\"properties\":" + input + "}";
            for (const QString& call : QStringList{"volumes", "files", "value", "range"}) {
                const auto thrown = run(call, input);
                const QString input64 = QByteArray::fromStdString(input).toBase64();
                QVERIFY2(!thrown.first.startsWith("unexpected"),
                         qPrintable(call + " on base64 " + input64 + ": " + thrown.first + ' '
                                    + thrown.second));
                if (!thrown.first.isEmpty())
                    ++seen[thrown.first];
            }
        }
        // The inputs must get past the syntax check into every documented failure.
        for (const char* kind : {"JSON", "BadCast", "InvalidAccess", "NullPointer"})
            QVERIFY2(seen.contains(kind), kind);
    }
};

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_badinput.moc"
