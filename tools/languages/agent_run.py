"""The agent in a language: which texts it has, and a run of the simulated machine in which it should show them."""
import json
import os
import subprocess

import polib

from string_table import shown_text
from texts import read_english

ENGLISH = "en"
# Each language in the region that most of its readers live in. Wine takes the language of the user interface from LC_ALL,
# whether such a locale is installed or not.
LOCALES = {
    "en_US": ENGLISH, "ar_SA": "ar", "bg_BG": "bg", "zh_CN": "zh-Hans", "cs_CZ": "cs", "da_DK": "da", "de_DE": "de",
    "el_GR": "el", "es_ES": "es", "fi_FI": "fi", "he_IL": "he", "hu_HU": "hu", "it_IT": "it", "ko_KR": "ko", "nl_NL": "nl",
    "nb_NO": "nb", "pl_PL": "pl", "ro_RO": "ro", "ru_RU": "ru", "sr_RS@latin": "sr-Latn", "sk_SK": "sk", "sv_SE": "sv",
    "th_TH": "th", "tr_TR": "tr", "sl_SI": "sl", "et_EE": "et", "lv_LV": "lv", "lt_LT": "lt", "zh_TW": "zh-Hant",
    "fr_FR": "fr", "ja_JP": "ja", "pt_BR": "pt-BR", "hr_HR": "hr", "pt_PT": "pt-PT",
}


def texts_of(res, language):
    """The texts that a person sees, by the names of their ids; `res` is the folder of the resources."""
    if language == ENGLISH:
        return read_english(res / "strings" / "en.rc")
    file = polib.pofile(str(res / "languages" / f"{language}.po"), encoding="utf-8")
    return {entry.msgctxt: shown_text(language, entry.msgctxt, entry.msgstr) for entry in file}


def run_scenario(command, out, locale, scenario):
    """Runs the scenario under the locale; what the run said when it went wrong, else nothing.

    The command is a tools/wine-run line that runs scenarios; folder of output and scenario are added to it."""
    region, at, variant = locale.partition("@")
    out.mkdir(parents=True, exist_ok=True)
    file = out / f"{locale}.json"
    file.write_text(json.dumps(scenario, ensure_ascii=False, indent=1), encoding="utf-8")
    ended = subprocess.run([*command, "--out", str(out / locale), str(file)], stdin=subprocess.DEVNULL, check=False,
                           env={**os.environ, "LC_ALL": f"{region}.UTF-8{at}{variant}"}, stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, text=True, errors="replace")
    return ended.stdout if ended.returncode else ""
