#include "UntrustedTlsServer.h"

#include <QFile>
#include <QProcess>
#include <QSslSocket>

UntrustedTlsServer::UntrustedTlsServer(QObject* parent) : QTcpServer(parent)
{
}

bool UntrustedTlsServer::start()
{
    if (!QSslSocket::supportsSsl()) {
        m_failure = QStringLiteral("Qt has no TLS back end here");
        return false;
    }
    if (!makeCertificate())
        return false;
    if (!listen(QHostAddress::LocalHost)) {
        m_failure = errorString();
        return false;
    }
    return true;
}

QString UntrustedTlsServer::url() const
{
    return QStringLiteral("https://127.0.0.1:%1").arg(serverPort());
}

bool UntrustedTlsServer::makeCertificate()
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
        m_failure = QStringLiteral("openssl could not make a certificate: %1%2")
                        .arg(openssl.errorString(), QString::fromLocal8Bit(openssl.readAll()));
        return false;
    }
    QFile certificateFile(certificate);
    QFile keyFile(key);
    if (certificateFile.open(QIODevice::ReadOnly))
        m_certificate = QSslCertificate(&certificateFile, QSsl::Pem);
    if (keyFile.open(QIODevice::ReadOnly))
        m_key = QSslKey(&keyFile, QSsl::Ec, QSsl::Pem);
    if (m_certificate.isNull() || m_key.isNull()) {
        m_failure = QStringLiteral("the certificate openssl made could not be read");
        return false;
    }
    return true;
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
