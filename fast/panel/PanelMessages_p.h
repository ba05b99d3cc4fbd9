#pragma once

#include <QString>

#include <exception>

class QWidget;

// How the pages tell the host's log and the user what happened: traces, information
// and errors on the event bus (MDEventBus::Kind), and warning boxes with an OK button.
// Information, errors and boxes are for the user and take translated texts (tr()); traces are
// for the developer and stay in English.
namespace fast {

void trace(const QString& text);
void information(const QString& text);
void error(const QString& text);
void warn(QWidget* parent, const QString& title, const QString& text);

// The exception's message. POCO's what() gives only the exception's name, which stands in when
// its message is empty.
QString exceptionText(const std::exception& failure);

// The listing of the VDS could not be read: logged as an error and shown to the user.
void reportListingFailure(QWidget* parent, const std::exception& failure);

// Traces an exception that the user is not told of on the event bus.
void traceException(const std::exception& failure);

// Runs a FAST call whose failure the user is not told of, such as those of the trees' own
// handlers: whatever it throws is traced, and the caller goes on as if it had succeeded.
template<typename Call>
void quietly(Call&& call) noexcept
{
    try {
        call();
    } catch (const std::exception& failure) {
        traceException(failure);
    } catch (...) {
        trace(QStringLiteral("Unknown exception"));
    }
}

} // namespace fast
