// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Who the gateway talks to: encrypted connections to brokers with right and wrong certificates,
// users and passwords.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tests/tools/fxgate/bus/test_broker.h"
#include "tools/fxgate/bus/bus_client.h"
#include "tools/fxgate/bus/plain_form.h"

#include <gtest/gtest.h>

#include <QProcess>

using namespace fxgate;
using namespace gate_tests;

namespace {

// Two authorities; certificates of one for localhost, for another host, and for a client.
class Certificates
{
public:
    Certificates()
    {
        for (const char* authority : {"ca", "stranger"})
            openssl("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
                    "-keyout %1.key -out %1.pem -subj /CN=%1",
                    authority);
        sign("right", "subjectAltName=DNS:localhost,IP:127.0.0.1");
        sign("elsewhere", "subjectAltName=DNS:broker.example");
        sign("client", "subjectAltName=DNS:client");
    }

    QString path(const QString& name) const { return m_folder.path(name); }

    // Of a broker that shows this certificate.
    QByteArray listener(const QString& certificate) const
    {
        return QString("allow_anonymous true\ncertfile %1.pem\nkeyfile %1.key\n")
            .arg(path(certificate))
            .toUtf8();
    }

private:
    void openssl(const QString& arguments, const QString& name) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path({}));
        process.start("openssl", arguments.arg(name).split(' '));
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    }

    void sign(const QString& name, const QByteArray& extension) const
    {
        m_folder.write(name + ".ext", extension);
        openssl("req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout %1.key -out "
                "%1.csr -subj /CN=%1",
                name);
        openssl("x509 -req -in %1.csr -CA ca.pem -CAkey ca.key -days 2 -extfile %1.ext -out %1.pem",
                name);
    }

    Folder m_folder;
};

class EncryptionTest : public testing::Test
{
protected:
    Folder m_folder;
    Certificates m_certificates;
    Plant m_plant = {{"press1", pressView()}};
    PlainForm m_form = PlainForm("fx", "cabinet1", m_plant);

    BrokerSettings encrypted(const Broker& broker) const
    {
        BrokerSettings settings = broker.settings();
        settings.host = "localhost";
        settings.isEncrypted = true;
        settings.caFile = m_certificates.path("ca.pem");
        return settings;
    }

    // The first line that it says.
    std::string outcome(const BrokerSettings& settings)
    {
        StoreSettings file;
        file.file = m_folder.path("store.db");
        Store store(file);
        BusClient bus(m_form, store, settings, m_plant, realEnvironment());
        const Ticker ticker([&bus] { bus.tick(); });
        QString said;
        bus.onState = [&said](const QString& line) { said = said.isEmpty() ? line : said; };
        bus.start();
        EXPECT_TRUE(waitUntil([&said] { return !said.isEmpty(); }));
        bus.stop();
        return said.toStdString();
    }

    testing::AssertionResult says(const BrokerSettings& settings, const std::string& part)
    {
        const std::string said = outcome(settings);
        return (said.find(part) != std::string::npos ? testing::AssertionSuccess()
                                                     : testing::AssertionFailure())
               << said;
    }
};

const std::string connected = "plain: connected to localhost";

TEST_F(EncryptionTest, RightCertificate)
{
    const Broker broker(m_certificates.listener("right"));
    EXPECT_EQ(outcome(encrypted(broker)), connected);
    BrokerSettings settings = encrypted(broker);
    settings.host = "127.0.0.1";
    settings.isVersion5 = false;
    EXPECT_EQ(outcome(settings), "plain: connected to 127.0.0.1");
}

TEST_F(EncryptionTest, CertificateOfAnotherHost)
{
    const Broker broker(m_certificates.listener("elsewhere"));
    EXPECT_TRUE(says(encrypted(broker), "host name"));
}

TEST_F(EncryptionTest, CertificateOfAStranger)
{
    const Broker broker(m_certificates.listener("right"));
    BrokerSettings settings = encrypted(broker);
    settings.caFile = m_certificates.path("stranger.pem");
    EXPECT_TRUE(says(settings, "certificate verify failed"));
    settings.caFile.clear();  // those of the system
    EXPECT_TRUE(says(settings, "certificate verify failed"));
}

TEST_F(EncryptionTest, BrokerThatIsAwayCostsNoTime)
{
    Broker broker;
    broker.kill();
    EXPECT_EQ(outcome(encrypted(broker)), "plain: not connected to localhost: cannot connect");
}

TEST_F(EncryptionTest, BrokerWithoutEncryption)
{
    const Broker broker;
    EXPECT_NE(outcome(encrypted(broker)), connected);
}

TEST_F(EncryptionTest, BrokerThatWantsACertificate)
{
    const Broker broker(m_certificates.listener("right") + "require_certificate true\ncafile " +
                        m_certificates.path("ca.pem").toUtf8() + '\n');
    EXPECT_NE(outcome(encrypted(broker)), connected);
    BrokerSettings settings = encrypted(broker);
    settings.certFile = m_certificates.path("client.pem");
    settings.keyFile = m_certificates.path("client.key");
    EXPECT_EQ(outcome(settings), connected);
    settings.certFile = m_certificates.path("stranger.pem");
    settings.keyFile = m_certificates.path("stranger.key");
    EXPECT_NE(outcome(settings), connected);
}

TEST_F(EncryptionTest, FilesThatCannotBeRead)
{
    const Broker broker(m_certificates.listener("right"));
    BrokerSettings settings = encrypted(broker);
    settings.caFile = m_certificates.path("missing.pem");
    EXPECT_TRUE(says(settings, "cannot read the certificate or key files"));
    settings = encrypted(broker);
    settings.user = "anna";
    settings.passwordFile = m_certificates.path("missing");
    EXPECT_TRUE(says(settings, "cannot read " + settings.passwordFile.toStdString()));
}

TEST_F(EncryptionTest, UserAndPassword)
{
    const QString users = m_folder.path("users");
    EXPECT_EQ(QProcess::execute("mosquitto_passwd", {"-c", "-b", users, "anna", "secret"}), 0);
    const Broker broker("allow_anonymous false\npassword_file " + users.toUtf8() + '\n');
    BrokerSettings settings = broker.settings();
    settings.host = "localhost";
    EXPECT_NE(outcome(settings), connected);
    settings.user = "anna";
    settings.passwordFile = m_folder.write("password", "secret\n");
    EXPECT_EQ(outcome(settings), connected);
    settings.passwordFile = m_folder.write("password", "wrong-secret\n");
    for (const bool isVersion5 : {true, false}) {
        settings.isVersion5 = isVersion5;
        EXPECT_TRUE(says(settings, "the broker refused the connection"));
        EXPECT_FALSE(says(settings, "secret"));
    }
}

}  // namespace
