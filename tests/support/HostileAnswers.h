#pragma once

#include "FastEmulatorFixture.h"

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

// Answers FAST should never send, each with its name: shapes swapped, nulls, numbers for texts,
// keys missing, an empty or an HTML page, bytes that are not UTF-8, ten megabytes, an answer
// broken off. Bodies without a status come from FAST itself, which has acted on the request; a
// status means something in front of FAST answered, which never saw it.
const std::vector<std::pair<const char*, emulator::Fault>>& hostileAnswers();
// The name of the ten-megabyte answer, which costs enough to be sent once per action.
inline const char* const kTenMegabytes = "10 MB";

// Whether text is pattern with each %1, %2... standing for any text: the literal pieces in
// order, since a regular expression gives up on ten megabytes.
bool madeFrom(const QString& text, const QString& pattern);
// The texts that are made from none of the patterns.
QStringList madeFromNone(const QStringList& texts, const QStringList& patterns);
