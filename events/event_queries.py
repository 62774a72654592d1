"""The subscription for event collectors and the view for Event Viewer: read, and refused with a reason."""
import re
import xml.etree.ElementTree as ElementTree

from event_xpath import QueryFault, parse

NAMESPACE = "http://schemas.microsoft.com/2006/03/windows/events/subscription"
# In the order in which a collector's own export has them; True: a source-initiated subscription cannot be without.
_SUBSCRIPTION = {"SubscriptionId": True, "SubscriptionType": True, "Description": False, "Enabled": False, "Uri": True,
                 "ConfigurationMode": False, "Delivery": False, "Expires": False, "Query": True, "ReadExistingEvents": False,
                 "TransportName": False, "ContentFormat": False, "Locale": False, "LogFile": False,
                 "AllowedSourceNonDomainComputers": False, "AllowedSourceDomainComputers": True}
_WORDS = {"SubscriptionType": ("SourceInitiated",), "Enabled": ("true", "false"),
          "Uri": ("http://schemas.microsoft.com/wbem/wsman/1/windows/EventLog",),
          "ConfigurationMode": ("Normal", "Custom", "MinLatency", "MinBandwidth"), "ReadExistingEvents": ("true", "false"),
          "TransportName": ("http", "https"), "ContentFormat": ("Events", "RenderedText"), "LogFile": ("ForwardedEvents",)}
# Groups of a domain or of a computer that Windows knows by two letters; any other is named by its SID.
_GROUPS = ("AN", "AU", "BA", "BU", "CA", "DA", "DC", "DD", "DG", "DU", "EA", "ED", "IU", "LS", "NS", "NU", "RO", "SU", "SY", "WD")
_TRUSTEE = rf"(?:{'|'.join(_GROUPS)}|S-1(?:-\d+){{2,}})"
_ENTRY = rf"\([AD];;GA;;;{_TRUSTEE}\)"


def _parsed(text):
    try:
        return ElementTree.fromstring(text)
    except ElementTree.ParseError as fault:
        raise QueryFault(f"this is no XML: {fault}") from fault


def _the(node, path):
    found = node.findall(path)
    if len(found) != 1:
        raise QueryFault(f"{node.tag} has {len(found)} times {path}")
    return found[0]


def selections(query_list):
    """(channel, query) of every Select of a QueryList; each is parsed."""
    if query_list.tag != "QueryList" or not len(query_list):
        raise QueryFault("a QueryList with queries is expected")
    found = []
    for query in query_list:
        if query.tag != "Query" or not query.findall("Select"):
            raise QueryFault("a Query with a Select is expected")
        for select in query:
            if select.tag not in ("Select", "Suppress"):
                raise QueryFault(f"a Query has no {select.tag}")
            channel = select.get("Path", query.get("Path"))
            if not channel:
                raise QueryFault("a query names no channel")
            parse(select.text or "")
            if select.tag == "Select":
                found.append((channel, select.text.strip()))
    identifiers = [query.get("Id") for query in query_list]
    if len(identifiers) > 1 and (None in identifiers or len(set(identifiers)) < len(identifiers)):
        raise QueryFault("several queries need an Id each")
    return found


def _check_delivery(delivery):
    if delivery.get("Mode") != "Push":
        raise QueryFault("computers push their events: Mode is Push")
    numbers = [_the(delivery, f"{{{NAMESPACE}}}Batching/{{{NAMESPACE}}}{name}").text for name in ("MaxItems", "MaxLatencyTime")]
    numbers.append(_the(delivery, f"{{{NAMESPACE}}}PushSettings/{{{NAMESPACE}}}Heartbeat").get("Interval"))
    if not all((number or "").isdecimal() and int(number) > 0 for number in numbers):
        raise QueryFault("delivery has a number that is none")


def _check_computers(descriptor):
    if not re.fullmatch(rf"O:{_TRUSTEE}G:{_TRUSTEE}D:(?:{_ENTRY})+", descriptor or ""):
        raise QueryFault("AllowedSourceDomainComputers needs owner, group and whole entries, (A;;GA;;;WHO)")
    if "(A;" not in descriptor:
        raise QueryFault("AllowedSourceDomainComputers lets nobody in")


def subscription(text):
    """Selections of a subscription; raises QueryFault for what a collector would refuse."""
    root = _parsed(text)
    if root.tag != f"{{{NAMESPACE}}}Subscription":
        raise QueryFault("a Subscription in its namespace is expected")
    names = [child.tag.removeprefix(f"{{{NAMESPACE}}}") for child in root]
    order = list(_SUBSCRIPTION)
    for name in names:
        if name not in _SUBSCRIPTION:
            raise QueryFault(f"a subscription has no {name}")
    if names != sorted(set(names), key=order.index):
        raise QueryFault("elements stand twice or in another order")
    for name, needed in _SUBSCRIPTION.items():
        if needed and name not in names:
            raise QueryFault(f"{name} is missing")
    for name, child in zip(names, root):
        if name in _WORDS and child.text not in _WORDS[name]:
            raise QueryFault(f"{name} is one of {', '.join(_WORDS[name])}")
        if name == "Delivery":
            _check_delivery(child)
        if name == "AllowedSourceDomainComputers":
            _check_computers(child.text)
    return selections(_parsed(root.find(f"{{{NAMESPACE}}}Query").text.strip()))


def view(text):
    """Selections of a custom view; raises QueryFault for what Event Viewer would not import."""
    root = _parsed(text)
    if root.tag != "ViewerConfig":
        raise QueryFault("a ViewerConfig is expected")
    _the(root, "QueryConfig/QueryParams/UserQuery")
    if not (_the(root, "QueryConfig/QueryNode/Name").text or "").strip():
        raise QueryFault("the view has no name")
    return selections(_the(root, "QueryConfig/QueryNode/QueryList"))
