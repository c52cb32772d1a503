#include "visa/ResourceName.h"

#include <QtTest>

/// Resource names and the expressions that find them.
class ResourceTest : public QObject
{
    Q_OBJECT

private slots:
    void names()
    {
        const std::string malformed;
        const std::vector<std::pair<std::string, std::string>> canonicalNames = {
            {"TCPIP::scope", "TCPIP0::scope::inst0::INSTR"},
            {"tcpip7::a-b_c.D::gpib0,5::instr", "TCPIP7::a-b_c.D::gpib0,5::INSTR"},
            {" \tTCPIP0::a::INSTR\r\n", "TCPIP0::a::inst0::INSTR"}, // pasted
            {"GPIB0::7::INSTR", malformed},
            {"TCPIP0::a::5025::SOCKET", malformed},
            {"TCPIP0::::INSTR", malformed},
            {"TCPIP65536::a::INSTR", malformed}, // a board has 16 bits
            {"TCPIP0::a ::INSTR", malformed},
            {"TCPIP::" + std::string(235, 'a'), malformed}}; // too long in canonical form
        for (const auto &[name, canonical] : canonicalNames) {
            const auto parsed = visa::parseResourceName(name);
            QVERIFY2((parsed ? parsed->full : malformed) == canonical, name.c_str());
        }
    }

    void expressions()
    {
        const std::string name = "TCPIP0::a-b.c::INSTR";
        for (const char *match :
             {"tcpip?*instr", "?*::[^k]\\-b?c::?*", "?*(x|a-[a-c])[.]+c::?*|y"}) {
            QVERIFY2(visa::matchesExpression(match, name) == true, match);
        }
        // Part of the name does not match, and some characters stand for themselves.
        for (const char *other : {"?*::INST", "TCPIP0.?*", "^?*", "TCPIP0\\?*"}) {
            QVERIFY2(visa::matchesExpression(other, name) == false, other);
        }
        for (const char *malformed : {"*", "?*{VI_ATTR_INTF_NUM == 0}"}) {
            QVERIFY2(!visa::matchesExpression(malformed, name), malformed);
        }
    }
};

QTEST_GUILESS_MAIN(ResourceTest)
#include "ResourceTest.moc"
