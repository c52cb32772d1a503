#include "visa/ResourceExpression.h"
#include "visa/ResourceName.h"

#include <QtTest>

/// Resource names and the expressions that find them.
class ResourceTest : public QObject
{
    Q_OBJECT

private slots:
    void names_data()
    {
        QTest::addColumn<QByteArray>("full"); // empty when the name is malformed
        using Row = std::pair<QByteArray, QByteArray>;
        for (const auto &[name, full] :
             {Row{"TCPIP::scope", "TCPIP0::scope::inst0::INSTR"},
              {"tcpip7::Scope::GPIB0,5::instr", "TCPIP7::Scope::GPIB0,5::INSTR"},
              {"tcpip0::a-b_c.d::instr", "TCPIP0::a-b_c.d::inst0::INSTR"},
              {"GPIB0::INTFC", "GPIB0::INTFC"},
              {"gpib-vxi2::9", "GPIB-VXI2::9::INSTR"},
              {"ASRL3::INSTR", "ASRL3::INSTR"},
              {" \tTCPIP0::a::INSTR\r\n", "TCPIP0::a::inst0::INSTR"}, // pasted
              {"TCPIP::a::5025::socket", "TCPIP0::a::5025::SOCKET"}}) {
            QTest::newRow(name) << full;
        }
        for (const QByteArray &name :
             QByteArrayList{"", "scope", "TCPIP0::INSTR", "TCPIP0::::INSTR", "TCPIPx::a::INSTR",
                            "TCPIP0::a ::INSTR", "TCPIP0::a::b::c::INSTR", "TCPIP0:a:INSTR",
                            "TCPIP0::a b::INSTR", "TCPIP0::a::x::SOCKET", "TCPIP65536::a::INSTR",
                            QByteArray(300, 'a'), "TCPIP::" + QByteArray(235, 'a') + "::INSTR"}) {
            QTest::newRow(name) << QByteArray();
        }
    }

    void names()
    {
        QFETCH(const QByteArray, full);
        const auto name = visa::parseResourceName(QTest::currentDataTag());
        QCOMPARE(name ? QByteArray::fromStdString(name->full) : QByteArray(), full);
    }

    void expressions_data()
    {
        QTest::addColumn<int>("matches"); // of "TCPIP0::a-b.c::INSTR"; -1: there is no such
        const auto rows = [](int matches, const QByteArrayList &expressions) {
            for (const QByteArray &expression : expressions) {
                QTest::newRow(expression) << matches;
            }
        };
        rows(1, {"?*", "tcpip?*instr", "?*::[^k]\\-b?c::?*", "?*(x|a-[a-c])[.]+c::?*|y",
                 "((((?*)*)+)*)+", "TCPIP0::a-b.c::INSTR"});
        rows(0, {"", "?*::INST", "TCPIP0.?*", "?*$", "^?*", "TCPIP0\\?*"});
        rows(-1,
             {"(?*", "?*)", "TCPIP0[z-a]::?*", "*", "?**", "?*\\", "?*{VI_ATTR_INTF_NUM == 0}"});
    }

    void expressions()
    {
        const auto matches =
            visa::matchesExpression(QTest::currentDataTag(), "TCPIP0::a-b.c::INSTR");
        QTEST(matches ? int(*matches) : -1, "matches");
    }
};

QTEST_GUILESS_MAIN(ResourceTest)
#include "ResourceTest.moc"
