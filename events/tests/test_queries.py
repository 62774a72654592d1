"""The subscription and the view select the agent's records and no others; broken copies are refused."""
import re
import sys
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

sys.dont_write_bytecode = True
FOLDER = Path(__file__).resolve().parents[1]
ROOT = FOLDER.parent
sys.path.insert(0, str(FOLDER))
import event_queries  # noqa: E402
import event_xpath  # noqa: E402
from event_xpath import QueryFault  # noqa: E402

SUBSCRIPTION = (FOLDER / "OrvikNotifications-subscription.xml").read_text(encoding="utf-8")
VIEW = (FOLDER / "OrvikNotifications-view.xml").read_text(encoding="utf-8")


def sources_of_the_code():
    """The source of the audit log, and that of the agent's own log, which is the program's name."""
    audit_log = re.search(r'VeritorEventSourceName\[\] = L"([^"]+)"',
                          (ROOT / "src/wmievents/VeritorEventLog.h").read_text(encoding="utf-8"))
    program = re.search(r"add_executable\((\S+) WIN32", (ROOT / "src/app/CMakeLists.txt").read_text(encoding="utf-8"))
    return [audit_log[1], program[1]]


def event(source, identifier=4, level=3):
    return ElementTree.fromstring(
        f"<Event><System><Provider Name='{source}'/><EventID Qualifiers='0'>{identifier}</EventID><Level>{level}</Level>"
        "<Channel>Application</Channel></System><EventData><Data>Veritor log entry: %1</Data></EventData></Event>")


class Files(unittest.TestCase):
    def test_view_shows_what_is_forwarded_on_the_computer_and_on_the_collector(self):
        (_, query), = event_queries.subscription(SUBSCRIPTION)
        arrives = re.search("<LogFile>(.+)</LogFile>", SUBSCRIPTION)[1]
        self.assertEqual(event_queries.view(VIEW), [("Application", query), (arrives, query)])

    def test_records_of_the_agent_are_selected_whatever_their_number_and_level(self):
        (channel, query), = event_queries.subscription(SUBSCRIPTION)
        # Where no log is named for a source, Windows writes to this one; the installer names it too.
        self.assertEqual(channel, "Application")
        for source in sources_of_the_code():
            for identifier, level in ((0, 0), (4, 2), (30, 3), (65535, 4)):
                self.assertTrue(event_xpath.selects(query, event(source, identifier, level)), source)

    def test_records_of_others_are_not(self):
        (_, query), = event_queries.subscription(SUBSCRIPTION)
        for source in ("Orvik", "Orvik Veritor 2", "orvik veritor", "OrvikNotifications.exe", "Application Error"):
            self.assertFalse(event_xpath.selects(query, event(source)), source)

    def test_copies_of_the_query_in_documents_are_the_same(self):
        (_, query), = event_queries.subscription(SUBSCRIPTION)
        found = {}
        for path in sorted((ROOT / "docs").glob("*.md")):
            copies = re.findall(r"\*\[System\[Provider.*?\]\]\]", path.read_text(encoding="utf-8"))
            if copies:
                found[path.name] = set(copies)
        self.assertEqual(found, {"administrators.md": {query}, "support.md": {query}})


class BrokenSubscription(unittest.TestCase):
    def refuse(self, change, by, reason):
        broken = SUBSCRIPTION.replace(change, by)
        self.assertNotEqual(broken, SUBSCRIPTION)
        with self.assertRaisesRegex(QueryFault, reason):
            event_queries.subscription(broken)

    def test_xml_that_is_not_well_formed(self):
        self.refuse("</Description>", "</Descripton>", "no XML")

    def test_query_that_is_not_well_formed(self):
        self.refuse("</QueryList>", "", "no XML")

    def test_other_namespace(self):
        self.refuse("2006/03/windows", "2006/windows", "namespace")

    def test_unknown_element(self):
        self.refuse("<Enabled>true</Enabled>", "<Active>true</Active>", "has no Active")

    def test_missing_element(self):
        self.refuse("<SubscriptionId>Orvik-Notifications</SubscriptionId>", "", "SubscriptionId is missing")

    def test_other_order(self):
        self.refuse("<ReadExistingEvents>true</ReadExistingEvents>\n  <TransportName>http</TransportName>",
                    "<TransportName>http</TransportName><ReadExistingEvents>true</ReadExistingEvents>", "order")

    def test_unknown_words(self):
        for change, by in (("RenderedText", "Text"), ("SourceInitiated", "CollectorInitiated"), (">Custom<", ">Fast<"),
                           ("ForwardedEvents", "Forwarded"), (">http<", ">ftp<")):
            self.refuse(change, by, "is one of")

    def test_numbers_of_delivery(self):
        self.refuse(">30000<", ">30 s<", "number")
        self.refuse(">20<", ">0<", "number")
        self.refuse('Interval="3600000"', 'Every="3600000"', "number")

    def test_computers_that_may_send(self):
        element = re.search("<AllowedSourceDomainComputers>.*</AllowedSourceDomainComputers>", SUBSCRIPTION)[0]
        self.refuse(element, "", "AllowedSourceDomainComputers is missing")
        self.refuse(element, "<AllowedSourceDomainComputers></AllowedSourceDomainComputers>", "whole entries")
        for change, by in (("(A;;GA;;;DC)(", "(A;;GA;;;DC)"), ("O:NSG:NSD:", "D:"), (";;;DC)", ";;;Domain Computers)"),
                           (";;;DC)", ";;;XX)"), ("(A;;GA;;;DC)", "(A;;;;;DC)"), ("(A;;GA;;;DC)(A;;GA;;;NS)", "")):
            self.refuse(change, by, "whole entries")
        self.refuse("(A;;GA;;;DC)(A;", "(D;;GA;;;DC)(D;", "nobody")

    def test_group_may_be_named_by_its_sid(self):
        group = SUBSCRIPTION.replace(";;;DC)", ";;;S-1-5-21-397955417-626881126-188441444-1103)")
        self.assertEqual(event_queries.subscription(group), event_queries.subscription(SUBSCRIPTION))

    def test_query_without_channel(self):
        self.refuse(' Path="Application"', "", "channel")

    def test_query_that_selects_nothing(self):
        self.refuse("Select", "Suppress", "with a Select")


class BrokenView(unittest.TestCase):
    def refuse(self, change, by, reason):
        broken = VIEW.replace(change, by)
        self.assertNotEqual(broken, VIEW)
        with self.assertRaisesRegex(QueryFault, reason):
            event_queries.view(broken)

    def test_root_name_and_query(self):
        self.refuse("ViewerConfig", "ViewConfig", "ViewerConfig")
        self.refuse("<UserQuery />", "", "UserQuery")
        self.refuse("<Name>Orvik Notifications</Name>", "<Name> </Name>", "no name")
        self.refuse("QueryList", "Queries", "QueryList")


class Queries(unittest.TestCase):
    def test_taken(self):
        for query in ("*", "Event", "*[System/Level=1]", "*[System[(Level <= 3) and TimeCreated[timediff(@SystemTime) <= 86400000]]]",
                      "*[System[Provider[@Name='A'] and (EventID=4 or EventID=30)]]", "*[EventData[Data='x']]",
                      "*[System[EventID[@Qualifiers=0]]]", "*[System[Band(Keywords, 4503599627370496)]]"):
            event_xpath.parse(query)

    def test_refused(self):
        for query, reason in (
                ("*[EventData[contains(Data, 'x')]]", "no function contains"),
                ("*[System[starts-with(Computer, 'x')]]", "no function starts-with"),
                ("*[not(System/Level=1)]", "no function not"),
                ("//Event[System/Level=1]", "expected instead of /"),
                ("/Event", "expected instead of /"),
                ("*[System/Level=1]/System", "behind the end"),
                ("*[System[Level=1]", r"\] is expected"),
                ("*[System[Level=Task]]", "text or a number"),
                ("*[System[Source='A']]", "System has no Source"),
                ("*[System[Provider[@Nme='A']]]", "Provider has no @Nme"),
                ("*[System[Provider[Name='A']]]", "Provider has no Name"),
                ("*[Sytem[Level=1]]", "an event has no Sytem"),
                ("*[System[Level=1 | Level=2]]", r"no '\|'"),
                ("*[System[(" + " or ".join(f"EventID={i}" for i in range(21)) + ")]]", "22 expressions are more than 20")):
            with self.assertRaisesRegex(QueryFault, reason, msg=query):
                event_xpath.parse(query)

    def test_selection(self):
        record = event("Orvik Veritor", 30, 4)
        for query, expected in (("*", True), ("*[System/Level=4]", True), ("*[System[Level<4]]", False),
                                ("*[System[EventID=4 or EventID=30]]", True), ("*[System[EventID=30 and Level!=4]]", False),
                                ("*[System[Provider[@Name='Orvik Veritor'] and (Level=1 or Level=4)]]", True),
                                ("*[System[EventID[@Qualifiers=1]]]", False), ("*[UserData]", False),
                                ("*[EventData[Data='Veritor log entry: %1']]", True)):
            self.assertEqual(event_xpath.selects(query, record), expected, query)


if __name__ == "__main__":
    unittest.main()
