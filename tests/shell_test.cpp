// The shell, run as a program on the example device.
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/test_system.h"

namespace {

using Json = nlohmann::ordered_json;
using Names = std::set<std::string>;
using support::TextOf;

const std::string root = TARND_PROJECT_ROOT;
const std::string device = root + "/data/access-switch.json ";

// Input: a command that prints it.
support::Outcome RunShell(const std::string& arguments, const std::string& input = "true")
{
    return support::Run(input + " | " TARND_SHELL " " + arguments + " 2>&1");
}

// The calls of docs/calls.txt, in one process and in this order.
TEST(Shell, CallsEveryFunction)
{
    const std::string calls = "grep -v '^#' " + root + "/docs/calls.txt";
    Names called;
    std::istringstream results(RunShell("--json " + device, calls + " | sed 's/ => .*//'").output);
    std::istringstream expected(support::Run(calls).output);
    for (std::string call, line; std::getline(expected, call);) {  // "CALL => CODE OUTPUTS"
        while (std::getline(results, line) && line.starts_with("{\"event\":")) {
        }
        const Json result = Json::parse(line);
        std::string got = call.substr(0, call.find(" => ") + 4);
        got += result["result"].is_null() ? "-" : result["result"].dump();
        got += result["outputs"].empty() ? "" : " " + result["outputs"].dump();
        EXPECT_TRUE(got == call || call.ends_with(" => *")) << call << "\n" << line;
        called.insert(call.substr(0, call.find(' ')));
    }

    Names known;
    for (const Json& function : Json::parse(RunShell("--json " + device + "functions").output)) {
        known.insert(function["function"].get<std::string>());
    }
    EXPECT_EQ(called, known);

    // The exceptions are the thread's entry function and functions that lock.
    const std::regex byThreads(
        "DbListenerEpollThreadFunc|g_epollDbListenerCond(Lock)?|g_dbListenerRegLock");
    const std::string map = TextOf(root + "/cmake/tarnd_qrb.map");
    const std::regex exported("\n +(\\w+);");
    for (std::sregex_iterator match(map.begin(), map.end(), exported), end; match != end; ++match) {
        EXPECT_TRUE(known.contains((*match)[1]) || std::regex_match((*match)[1].str(), byThreads))
            << (*match)[1] << " can't be called from the shell";
    }
}

// A session with text output. "@" matches text that differs from run to run.
TEST(Shell, SessionPrintsTheRecordedText)
{
    const std::string session = root + "/tests/data/shell_session.txt";
    const auto [status, output] = RunShell("--echo " + device, "sed -n 's/^> //p' " + session);
    const std::regex changing(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6}[+-]\d\d:\d\d|[\d.]+(?= us))"
                              R"(|:\d+(?=\] )|line \d+(?=: ))");
    EXPECT_EQ(std::regex_replace(output, changing, "@"), TextOf(session));
    EXPECT_EQ(status, 3);
}

TEST(Shell, ExitStatusDependsOnKindOfFailure)
{
    const std::pair<std::string, int> runs[] = {{device + "BDS_L2IF_VLAN_IsActive 10", 0},
                                                {device + "BDS_L2IF_VLAN_IsActive 200", 1},
                                                {device + "IP_GetMainIpAddr 3", 1},
                                                {device + "update port if_index=99 pvid=1", 1},
                                                {device + "IP_GetMainIpAddr", 2},
                                                {"", 2},
                                                {"none.json", 3},
                                                {device + "load none.json", 3},
                                                {device + "dump /nowhere/file", 3},
                                                {device + "diff " + device, 0},
                                                {"--version", 0}};
    for (const auto& [arguments, status] : runs) {
        EXPECT_EQ(RunShell(arguments).status, status) << arguments;
    }
}

TEST(Shell, ErrorsNameTheLineOfTheInput)
{
    const std::string input = "printf 'tables\\n# comment\\nshow none\\nexit\\nshow none\\n'";
    EXPECT_NE(RunShell(device, input).output.find("line 3: unknown table none"), std::string::npos);
    const std::string json = RunShell("--json " + device, input).output;
    EXPECT_NE(json.find(R"({"error":"unknown table none","line":3})"), std::string::npos) << json;
    EXPECT_EQ(json.find("\"line\":5"), std::string::npos) << "exit ends the input";
    EXPECT_EQ(RunShell(device + "show none").output, "unknown table none\n");
}

TEST(Shell, LogLinesGoToStandardErrorOrIntoTheResult)
{
    const std::string call = TARND_SHELL " " + device + "IP_GetMainIpAddr 3";
    EXPECT_EQ(support::Run(call + " 2>/dev/null").output.find("log"), std::string::npos);
    EXPECT_NE(support::Run(call + " 2>&1 >/dev/null").output.find("log  [TARND_QRB]"),
              std::string::npos);
    const Json result = Json::parse(RunShell("--json " + device + "IP_GetMainIpAddr 3").output);
    EXPECT_EQ(result["log"].size(), 1);
}

TEST(Shell, OrdinaryWritesLogNothing)
{
    const std::string writes =
        "printf 'update if_phy if_index=1 phy_state=0\\n"
        "insert if_base if_index=70 if_name=Ethernet0/0/70\\n"
        "delete if_base if_index=70\\n'";
    EXPECT_EQ(RunShell(device, writes).output, "1 row updated\n1 row inserted\n1 row deleted\n");
}

// A co-process reads each line as it arrives, while the input stays open.
TEST(Shell, ResultsAndEventsAreWrittenAtOnce)
{
    const std::string script = "coproc SHELL { " TARND_SHELL " " + device + R"(; }
echo watch on >&${SHELL[1]}
echo update if_phy if_index=1 phy_state=0 >&${SHELL[1]}
while read -r -t 5 -u ${SHELL[0]} line; do
    echo "$line"
    case $line in *PHY_STATE*) break;; esac
done
kill $SHELL_PID
)";
    const auto [status, output] = support::Run("bash -c '" + script + "' 2>&1");
    EXPECT_NE(output.find("PHY_STATE  ifIndex=1 (Ethernet0/0/1) flag=1 (down)"), std::string::npos)
        << output;
}

TEST(Shell, NamesAreAcceptedAndPrintedWhereNumbersAre)
{
    const auto outputOf = [](const std::string& command) {
        return RunShell("--json " + device + command).output;
    };
    const Json state = Json::parse(outputOf("BDS_IfnetGetIfPhyState 9"));
    EXPECT_EQ(state["outputs"]["state"], 0);
    EXPECT_EQ(state["words"], Json({{"ifIndex", "Ethernet0/0/9"}, {"state", "down"}}));
    EXPECT_EQ(Json::parse(outputOf("IF_INTF_GetIfByFullName Vlanif10"))["words"]["result"],
              "Vlanif10");
    EXPECT_NE(RunShell(device + "L2IF_SH_EvtCbFuncReg stp NO_EVENT").output.find("VLAN_ADD_PORT"),
              std::string::npos);

    const std::string byName = "printf 'IF_RegNotifyFunc 7\\nIF_NotifyAll 7 DOWN\\n'";
    const std::string lines = RunShell("--json " + device, byName).output;
    const Json event = Json::parse(lines.substr(lines.find("{\"event\"")));
    EXPECT_EQ(event["id"], 4);
    EXPECT_EQ(event["name"], "DOWN");
    EXPECT_EQ(event["ifName"], "Ethernet0/0/7");
}

// The count that was given before the call is the capacity of a buffer.
TEST(Shell, FailedCallShowsNoCount)
{
    const Json result =
        Json::parse(RunShell("--json " + device + "MEM_EX_GetDetailedInfo 2").output);
    EXPECT_FALSE(result["good"]);
    EXPECT_TRUE(result["outputs"]["count"].is_null());
}

TEST(Shell, ShowSelectsSortsAndLimits)
{
    const auto rows = [](const std::string& selection) {
        return RunShell(device + "show " + selection).output;
    };
    EXPECT_EQ(rows("if_base 'if_name=Ten*' columns if_name,mtu sort -if_index limit 2"),
              "if_name           mtu\n"
              "TenGigabit2/0/2  9216\n"
              "TenGigabit2/0/1  9216\n");
    EXPECT_EQ(rows("if_phy if_index=9 phy_state=down columns if_index,phy_state lines"),
              "if_index   9 (Ethernet0/0/9)\n"
              "phy_state  0 (down)\n");
    EXPECT_EQ(RunShell("--json " + device + "show port vlan_bitmap_2-=20 limit 1").output.find("["),
              0);
    EXPECT_EQ(rows("port vlan_bitmap_1+=4094 columns pvid limit 1"), "pvid\n4094\n");
    EXPECT_EQ(rows("if_base if_name=none"), rows("if_base 'if_name=none*'"));
    EXPECT_NE(rows("port sort none").find("unknown field none"), std::string::npos);
    EXPECT_NE(RunShell(device + "walk vlan").output.find("staff"), std::string::npos);
    const Json none = Json::parse(RunShell("--json " + device + "show port if_index=999").output);
    EXPECT_EQ(none, Json::array());
}

// A row of addresses without a list ends the search.
TEST(Shell, TheOwnerOfAnAddressIsFoundUpToARowWithoutAddressList)
{
    EXPECT_EQ(RunShell(device + "BDS_IPGetIfindexbyIpAddr 198.51.100.1").output,
              "result   0 (ok)\nifIndex  14094 (Vlanif4094)\n");
    const std::string noList = root + "/data/no-address-list.json BDS_IPGetIfindexbyIpAddr ";
    EXPECT_EQ(RunShell(noList + "192.0.2.1").status, 0);
    EXPECT_EQ(RunShell(noList + "198.51.100.1").status, 1);
}

TEST(Shell, StatusShowsHowCurrentTheDataAre)
{
    const std::string input = "printf 'begin\\ndelete if_base if_index=1\\nstatus\\nabort\\n'";
    std::istringstream lines(RunShell("--json " + device, input).output);
    std::string line;
    std::getline(lines >> std::ws, line);  // waiting for commit
    std::getline(lines, line);
    const Json status = Json::parse(line);
    EXPECT_EQ(status["source"], root + "/data/access-switch.json");
    EXPECT_EQ(status["data"], "loaded");
    EXPECT_EQ(status["transaction"], 1);
    EXPECT_EQ(status["waiting"]["messages"], 0);
    EXPECT_EQ(status["rows"]["vlan"], 9);
}

// A server is killed while a shell follows it.
TEST(Shell, AnswersFromStaleDataSaySo)
{
    if (support::Run("command -v ovsdb-server ovsdb-tool").status != 0) {
        GTEST_SKIP() << "ovsdb-server and ovsdb-tool are not installed";
    }
    const std::string script = R"(d=$(mktemp -d)
ovsdb-tool create $d/db )" + root +
                               R"(/data/tarnd_qrb.ovsschema
ovsdb-server --detach --no-chdir --pidfile=$d/pid --unixctl=$d/ctl --remote=punix:$d/socket $d/db
{
    echo tables; sleep 1; kill -9 $(cat $d/pid); sleep 1
    echo show vlan; echo IP_GetMainIpAddr 3; echo status
} | )" TARND_SHELL R"( $1 ovsdb:unix:$d/socket 2>&1
rm -r $d)";
    const auto outputOf = [&](const std::string& option) {
        return support::Run("bash -c '" + script + "' - " + option).output;
    };
    const std::string text = outputOf("");
    EXPECT_TRUE(std::regex_search(
        text, std::regex("stale: no server has been followed for [0-9.]+ s\n[^]*"
                         "stale: no server has been followed for [0-9.]+ s\nresult +1[^]*"
                         "data +stale for [0-9.]+ s, no server is followed\nerror +unix:")))
        << text;
    const std::string json = outputOf("--json");
    EXPECT_TRUE(std::regex_search(
        json, std::regex("\\{\"stale\":[0-9.]+\\}\n\\[\\]\n\\{\"function\"[^\n]*\"stale\":")))
        << json;
}

TEST(Shell, OutputThatCannotBeWrittenIsAnError)
{
    const std::string call = TARND_SHELL " " + device + "functions ";
    for (const char* output : {">/dev/full", ">&-", "| true; exit ${PIPESTATUS[0]}"}) {
        const auto [status, text] = support::Run("bash -c '{ " + call + output + "; } 2>&1'");
        EXPECT_EQ(status, 3) << output;
        EXPECT_NE(text.find("standard output"), std::string::npos) << output << text;
    }
}

TEST(Shell, SaveKeepsTheOldFileUntilTheNewOneIsComplete)
{
    const std::string script = "cp " + device + R"($d/device.json; chmod 640 $d/device.json
run() { )" TARND_SHELL R"( $d/device.json "$@"; }
(trap "" XFSZ; ulimit -f 4; run save); echo status $?
cmp $d/device.json )" + device +
                               R"(&& ls $d
printf "update port if_index=1 pvid=30\nsave\n" | run
run show port if_index=1 columns pvid
stat -c %a $d/device.json)";
    const auto [status, output] = support::Run("bash -c 'd=$(mktemp -d); { " + script +
                                               "; } 2>&1 | sed \"s:$d/::\"; rm -r $d'");
    EXPECT_EQ(output,
              "device.json: File too large\nstatus 3\ndevice.json\n"
              "1 row updated\nsaved to device.json\npvid\n  30\n640\n");
}

TEST(Shell, ControlCharactersArePrintedEscaped)
{
    const std::string name =
        "printf 'insert if_base if_index=900 if_name=\"a\\033[31mb\\302\\205c\"\\n"
        "IF_GetIfNameByIndex 900\\n'";
    EXPECT_NE(RunShell(device, name).output.find(R"(a\x1b[31mb\xc2\x85c)"), std::string::npos);
    EXPECT_NE(RunShell("--json " + device, name).output.find(R"(a\u001b[31mb\u0085c)"),
              std::string::npos);
}

// With every limit from sufficient to too few for the loader (127) or for the redirection (1).
TEST(Shell, MissingDescriptorsEndInAMessage)
{
#ifdef __has_feature
#if __has_feature(address_sanitizer)
    GTEST_SKIP() << "the sanitizers' own checks of virtual tables need descriptors";
#endif
#endif
    const auto [status, statuses] =
        support::Run("bash -c 'for n in $(seq 16 -1 4); do (ulimit -n $n; " TARND_SHELL " " +
                     device + "tables >/dev/null 2>&1); echo -n \"$? \"; done'");
    EXPECT_TRUE(std::regex_match(statuses, std::regex("(0 )+(3 )+(127 |1 )*"))) << statuses;
}

// Whatever the limit is: from enough to too little for the loader (127). A file that does not fit
// is an error, and the session goes on.
TEST(Shell, MissingMemoryEndsInAMessage)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers reserve address space";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the sanitizers reserve address space";
#endif
#endif
    const std::string script =
        R"({ echo "{\"if_phy\": ["; seq -f "{\"if_index\": %.0f}," 100001 115000
echo "{\"if_index\": 99999}]}"; } >$d/rows.json
printf "load $d/rows.json\nshow if_phy if_index=1 columns if_index\n" >$d/lines
for m in 200 60 50 45 40 36 33 30 27 25 22 20 17 15 10; do
    (ulimit -v ${m}000; )" TARND_SHELL " " +
        device + R"(<$d/lines >$d/out 2>&1); echo -n "$? "
    grep -A2 "out of memory" $d/out >$d/last && cp $d/last $d/refused
done; echo; cat $d/refused)";
    const auto [status, output] =
        support::Run("bash -c 'd=$(mktemp -d); " + script + "; rm -r $d' 2>&1");
    EXPECT_TRUE(std::regex_match(output, std::regex("(0 )+(3 )+(127 )+\n"
                                                    "line 1: out of memory\n"
                                                    "if_index\n1 \\(Ethernet0/0/1\\)\n")))
        << output;
}

// What a terminal shows. The script writes keys with "type KEYS" and waits for a text with "await
// TEXT". The home directory is an empty one with a device.
std::string AtTerminal(const std::string& environment, const std::string& script)
{
    const std::string functions = R"(cd $(mktemp -d); export HOME=$PWD TERM=xterm
await() {
    local seen= c
    while IFS= read -r -N 1 -t 30 -u ${SHELL[0]} c; do
        printf %s "$c"; seen+=$c
        [[ $seen != *"$1" ]] || return
    done
}
type() { printf "$1" >&${SHELL[1]}; }
cp )" + device + "device.json\n";
    const std::string start = "coproc SHELL { env " + environment +
                              " script -qec \"" TARND_SHELL
                              " device.json\" /dev/null; }\nawait \"qrb> \"\n";
    return support::Run("bash -c '" + functions + start + script + "\nwait; ls -A' 2>&1").output;
}

TEST(Shell, PromptAsksBeforeWritesAreLost)
{
    const std::string output = AtTerminal("LC_ALL=C", R"(type "update port if_index=1 pvid=30\r"
await "qrb> "; type "quit\r"
await "[y/n/c] "; type "c\r"
await "qrb> "; type "\004"
await "[y/n/c] "; type "y\r"
await "saved to")");
    EXPECT_NE(output.find("1 write is not saved to device.json. Save?"), std::string::npos)
        << output;
    EXPECT_NE(output.find("saved to"), std::string::npos) << output;
}

// Invalid UTF-8, Ctrl-C, and no home directory.
TEST(Shell, PromptSurvivesAnyKey)
{
    const std::string output = AtTerminal("-u HOME LC_ALL=C", R"(type "\303\274\377\003"
type "IF_GetIfNameByIndex 2\r"
await "Ethernet0/0/2"; await "qrb> "; type "exit\r")");
    EXPECT_NE(output.find("Ethernet0/0/2"), std::string::npos) << output;
    EXPECT_EQ(output.find(".local"), std::string::npos) << output;
}

TEST(Shell, WatchPrintsEventsThatMatchTheFilter)
{
    const std::string lines =
        "printf 'watch on event=VLAN_* interface=*/1\\n"
        "update port if_index=1 vlan_bitmap_2+=30\\n"
        "update port if_index=2 vlan_bitmap_2+=30\\n"
        "update if_phy if_index=1 phy_state=0\\n'";
    const std::string output = RunShell("--json " + device, lines).output;
    std::istringstream printed(output);
    std::vector<Json> events;
    for (std::string line; std::getline(printed, line);) {
        if (const Json object = Json::parse(line); object.contains("event")) {
            events.push_back(object);
        }
    }
    ASSERT_EQ(events.size(), 2) << output;
    EXPECT_EQ(events[0]["interfaces"], Json({"*/1"}));
    EXPECT_EQ(events[1]["ifIndex"], 1);
    EXPECT_EQ(events[1]["added"], Json({30}));
    EXPECT_EQ(events[1]["removed"], Json::array());
    EXPECT_EQ(events[1]["vlan_bitmap_2"]["new"], Json({20, 30}));
    EXPECT_EQ(RunShell(device + "watch 1 event=VLAN_X").status, 2);
    EXPECT_EQ(RunShell(device + "watch 1 7").status, 2);
}

TEST(Shell, MonitorPrintsOldAndNewRow)
{
    const std::string lines =
        "printf 'monitor if_base on\\nmonitor if_phy on phy_state=down\\n"
        "update if_base if_index=7 mtu=9000\\n"
        "update if_phy if_index=1 phy_state=down\\n"
        "update if_phy if_index=2 speed=10\\n"
        "insert if_base if_index=71 if_name=Eth71\\n"
        "delete if_base if_index=71\\n"
        "monitor off\\nupdate if_base if_index=7 mtu=1500\\n'";
    const std::string text =
        support::Run(lines + " | " TARND_SHELL " " + device +
                     " | grep -v row | sed -E 's/^[0-9-]+ [0-9:.+-]+//; s/  [0-9.]+ us$//'")
            .output;
    EXPECT_EQ(text,
              "monitoring if_base\nmonitoring if_phy\n"
              "  update if_base  if_index=7 (Ethernet0/0/7): mtu 1500 -> 9000\n"
              "  update if_phy  if_index=1 (Ethernet0/0/1): phy_state 1 (up) -> 0 (down)\n"
              "  insert if_base  if_index=71 (Eth71) if_name=Eth71\n"
              "  delete if_base  if_index=71 if_name=Eth71\n");
}

TEST(Shell, BashCompletesCommandsAndValues)
{
    const std::pair<std::string, std::string> lines[] = {
        {"--v", "--version"},
        {device + "mon", "monitor"},
        {device + "show vlan vlan_id=4", "4094"},
        {"--json " + device + "watch event=PHY", "PHY_STATE PHY_UP"}};
    const std::string functions = ". " + root + R"(/shell/tarnd-qrb.bash-completion
try() {
    COMP_LINE="tarnd-qrb $1"; COMP_POINT=${#COMP_LINE}
    read -ra COMP_WORDS <<<"${COMP_LINE//=/ = }"; COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _tarnd_qrb )" TARND_SHELL R"(; echo -n "${COMPREPLY[*]}"
}
)";
    for (const auto& [line, completed] : lines) {
        EXPECT_EQ(support::Run("bash -c '" + functions + "try \"" + line + "\"' 2>&1").output,
                  completed)
            << line;
    }
}

}  // namespace
