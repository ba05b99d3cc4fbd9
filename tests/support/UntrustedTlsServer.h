#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QSslKey>
#include <QString>
#include <QTcpServer>
#include <QTemporaryDir>

// An HTTPS server on 127.0.0.1 whose certificate nobody trusts: a self-signed one that openssl
// makes for this object alone, valid for 127.0.0.1. It counts the connections that reached it and
// keeps whatever arrived through a completed handshake, which a client that verifies its peer
// never sends.
class UntrustedTlsServer : public QTcpServer
{
    Q_OBJECT

public:
    // False, saying why in failure(), when no certificate could be made or no port bound.
    bool start();
    QString failure() const { return m_failure; }
    QString url() const { return QStringLiteral("https://127.0.0.1:%1").arg(serverPort()); }
    int connections() const { return m_connections; }
    QByteArray requestBytes() const { return m_requestBytes; }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    QTemporaryDir m_folder;
    QSslCertificate m_certificate;
    QSslKey m_key;
    QString m_failure;
    int m_connections = 0;
    QByteArray m_requestBytes;
};
