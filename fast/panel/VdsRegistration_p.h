#pragma once

#include <QString>

#include <string>

class QWidget;

namespace fast {

class Fast;

// Registers url with FAST and notes the outcome in the host's log (as information). The new id, or
// empty when FAST gave none; the user has not been told yet.
std::string registerVdsInFast(const Fast& fast, const std::string& url);

// What both kinds of page show when a VDS could not be registered or mounted.
void warnRegistrationFailed(QWidget* parent);
void warnMountFailed(QWidget* parent);

// The note for a VDS that FAST knew already.
void noteAlreadyRegistered(const std::string& url, const std::string& vdsId);

} // namespace fast
