#!/usr/bin/env python3
"""Takes pictures of every dialog and of a toast in every language, and lays them out for whoever looks them over.

    take_pictures.py RES OUT [LANGUAGE]... -- command...

The command is a tools/wine-run line that runs scenarios. OUT gets KIND/LANGUAGE.png, a sheet KIND.png for each kind,
index.html with all of them, and languages.png, a small sheet for the documents. A kind is what is pictured: a toast, the text of a dialog, what a link tells.
"""
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
from agent_run import LOCALES, run_scenario, texts_of  # noqa: E402
from gallery import write_gallery  # noqa: E402

_SURGE = ("<GetUsbCMessagesOutput><Output><Data NumberOfPorts='1'><Port0 NumberOfMessages='1'>"
          "<Message0 MessageId='13' Valid='true'/></Port0></Data></Output></GetUsbCMessagesOutput>")
_USBC = {"Platform.USBC.Supported": {"answer": {"bool": True}},
         "Platform.USBC.Messages": {"by-input": {"255": {"answer": {"bstr": _SURGE}}}}}
# What the firmware's protection reports, the text of the dialog, and what its link tells.
_VERITOR = ((0, "IDS_VERITOR_RECOVERED", "IDS_VERITOR_BOOT_IMAGE_REPAIRED"),
            (1, "IDS_VERITOR_SHUT_DOWN_TO_REPAIR", "IDS_VERITOR_NOT_RECOVERED"),
            (4, "IDS_VERITOR_SHUT_DOWN_TO_RECOVER", "IDS_VERITOR_RUNTIME_INTRUSION"),
            (5, "IDS_VERITOR_POWER_OFF", None))
_OTHERS = ((21, "IDS_KEYBOARD_FIRMWARE_OUTDATED"),
           ({"class": "orvikBEvnt", "objects": [{"EventID": 83, "EventData": 0}], "event-id": 33}, "IDS_VERITOR_DISABLED"),
           ({"id": 20, "data": 1}, "IDS_LUMBRA_NOT_SUPPORTED"))


def kind_of(name):
    return name.removeprefix("IDS_").lower().replace("_", "-")


# Fonts that have the scripts which the one of the test environment lacks.
_FONTS = {"ar": "DejaVu Sans", "he": "DejaVu Sans", "th": "Loma", **dict.fromkeys(("zh-Hans", "zh-Hant", "ja", "ko"),
                                                                                "WenQuanYi Micro Hei")}
_FONT_OF_ENVIRONMENT = "Liberation Sans"
_SETTINGS = """REGEDIT4

[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]
"MS Shell Dlg"="{0}"
"MS Shell Dlg 2"="{0}"
"Tahoma"="{0}"
"""
TOAST = "toast"
KINDS = [TOAST, *(kind_of(name) for _, text, told in _VERITOR for name in (text, told) if name),
         *(kind_of(name) for _, name in _OTHERS)]


def scenario_of(language, texts):
    """Each dialog is compared with its text before it is pictured: what is looked at is what was meant."""
    def picture(kind):
        return f"{kind}/{language}.png"

    def dialog(name, **more):
        return [{"expect-dialog": {"text": texts[name], **more}}, {"picture-dialog": picture(kind_of(name))}]

    steps = [{"start": {}},
             {"expect-toast": {"title": texts["IDS_USBC_TITLE"], "text": texts["IDS_USBC_POWER_SURGE"]}},
             {"picture": picture(TOAST)}, {"dismiss": 0}]
    for data, name, told in _VERITOR:
        steps += [{"event": {"id": 131074, "data": data}}, *dialog(name)]
        if told:
            steps += [{"answer-dialog": "link"}, *dialog(told, box=True)]
        steps += [{"answer-dialog": {"with": "ok", "box": bool(told)}}, {"handled": {}}, {"expect-open-dialogs": []}]
    for event, name in _OTHERS:
        steps += [{"event": event}, *dialog(name), {"answer-dialog": "ok"}, {"handled": {}}]
    return {"title": f"Pictures in {language}", "facts": {"commands": _USBC}, "steps": steps}


def use_font(wine_run, out, face):
    """The programs that start from now on show dialogs, and toasts that DejaVu Sans cannot show, in that font."""
    file = out / "font.reg"
    file.write_text(_SETTINGS.format(face), encoding="ascii")
    subprocess.run([wine_run, "regedit", "/S", f"Z:{file.resolve()}"], stdin=subprocess.DEVNULL, check=True)


def main():
    split = sys.argv.index("--")
    res, out, *chosen = sys.argv[1:split]
    out = Path(out)
    failures = 0
    for kind in KINDS:
        (out / kind).mkdir(parents=True, exist_ok=True)
    for locale, language in LOCALES.items():
        if chosen and language not in chosen:
            continue
        print(f"Pictures in {language}", flush=True)
        use_font(sys.argv[split + 1], out, _FONTS.get(language, _FONT_OF_ENVIRONMENT))
        scenario = scenario_of(language, texts_of(Path(res), language))
        command = [*sys.argv[split + 1:], "--pictures", str(out)]
        if said := run_scenario(command, out / "runs", locale, scenario):
            failures += 1
            print("".join(f"    {line}\n" for line in said.splitlines()), flush=True)
    write_gallery(out, KINDS, list(LOCALES.values()), kind_of("IDS_VERITOR_RECOVERED"))
    print(f"Look at {out}/index.html")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
