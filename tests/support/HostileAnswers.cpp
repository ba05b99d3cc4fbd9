#include "HostileAnswers.h"

#include <QRegularExpression>

#include <algorithm>

#include <string>

namespace {

const std::string kHtml = "<html><head><title>502 Bad Gateway</title></head><body><h1>Bad Gateway</h1></body></html>";

// Ten megabytes in one text: sizes nobody checks, without the cost of a quarter of a million
// objects under a sanitizer.
std::string tenMegabytes()
{
    return R"([{"id":"x","url":")" + std::string(10 << 20, 'y') + R"(","vdsId":"x","path":"/p"}])";
}

} // namespace

const std::vector<std::pair<const char*, emulator::Fault>>& hostileAnswers()
{
    static const std::vector<std::pair<const char*, emulator::Fault>> answers = {
        {"array for object", answering("[]")},
        {"object for array", answering(R"({"oops":1})")},
        {"null", answering("null")},
        {"numbers and objects for texts", answering(R"([{"id":1,"url":{},"vdsId":1,"path":{}}])")},
        {"number for the version", answering(R"({"version":7,"properties":7})")},
        {"nulls in entries", answering(R"([{"id":null,"url":null,"vdsId":null,"path":null}])")},
        {"null version", answering(R"({"version":null})")},
        {"entry without keys", answering("[{}]")},
        {"object without keys", answering("{}")},
        {"empty 200", emulator::Fault{200, 0, std::string()}},
        {"HTML page 200", emulator::Fault{200, 0, kHtml}},
        {"HTML page 502", emulator::Fault{502, 0, kHtml}},
        {"invalid UTF-8", answering("\xff\xfe\xc3\x28")},
        {"invalid UTF-8 in entries",
         answering("[{\"id\":\"\xc3\x28\",\"url\":\"\xff\",\"vdsId\":\"\xc3\x28\",\"path\":\"/\xe2\x28\xa1\"}]")},
        {kTenMegabytes, answering(tenMegabytes())},
        {"cut short", broken(emulator::Delivery::TruncatedBody)},
        {"reset", broken(emulator::Delivery::ResetConnection)},
    };
    return answers;
}

bool madeFrom(const QString& text, const QString& pattern)
{
    const QStringList pieces = pattern.split(QRegularExpression("%\\d"));
    if (pieces.size() == 1)
        return text == pattern;
    if (!text.startsWith(pieces.first()) || !text.endsWith(pieces.last()))
        return false;
    int at = pieces.first().size();
    for (int i = 1; i + 1 < pieces.size(); ++i) {
        const int found = text.indexOf(pieces.at(i), at);
        if (found < 0)
            return false;
        at = found + pieces.at(i).size();
    }
    return at <= text.size() - pieces.last().size();
}

QStringList madeFromNone(const QStringList& texts, const QStringList& patterns)
{
    QStringList stray;
    for (const QString& text : texts) {
        if (std::none_of(patterns.begin(), patterns.end(), [&text](const QString& p) { return madeFrom(text, p); }))
            stray << text;
    }
    return stray;
}
