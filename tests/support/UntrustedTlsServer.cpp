#include "UntrustedTlsServer.h"

#include <QFile>
#include <QProcess>
#include <QSslSocket>

bool UntrustedTlsServer::start()
{
    const QString certificate = m_folder.filePath(QStringLiteral("certificate.pem"));
    const QString key = m_folder.filePath(QStringLiteral("key.pem"));
    QProcess openssl;
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    // The name matches, so the one thing wrong with it is who signed it.
    openssl.start(QStringLiteral("openssl"),
                  {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2",
                   "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out",
                   certificate});
    if (!openssl.waitForFinished(30000) || openssl.exitStatus() != QProcess::NormalExit || openssl.exitCode() != 0) {
        m_failure = "openssl could not make a certificate: " + openssl.errorString() + openssl.readAll();
        return false;
    }
    QFile certificateFile(certificate);
    QFile keyFile(key);
    if (certificateFile.open(QIODevice::ReadOnly) && keyFile.open(QIODevice::ReadOnly)) {
        m_certificate = QSslCertificate(&certificateFile, QSsl::Pem);
        m_key = QSslKey(&keyFile, QSsl::Ec, QSsl::Pem);
    }
    if (!QSslSocket::supportsSsl() || m_certificate.isNull() || m_key.isNull())
        m_failure = QStringLiteral("no TLS back end, or the certificate openssl made could not be read");
    else if (!listen(QHostAddress::LocalHost))
        m_failure = errorString();
    return m_failure.isEmpty();
}

void UntrustedTlsServer::incomingConnection(qintptr descriptor)
{
    auto* socket = new QSslSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    ++m_connections;
    socket->setLocalCertificate(m_certificate);
    socket->setPrivateKey(m_key);
    connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QSslSocket::readyRead, this, [this, socket] {
        m_requestBytes += socket->readAll();
        // Answer, so that a client that should not have got this far does not hang as well.
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n"
                      "Connection: close\r\n\r\n{}");
        socket->disconnectFromHost();
    });
    socket->startServerEncryption();
}
