#pragma once

class QString;

// Points the application's default QSettings store at a scratch folder, so that a benchmark
// neither reads nor changes the user's settings.
void useScratchSettings(const QString& folder);
