"""The languages besides English: name of the catalogue, and the id under which Windows finds its texts."""

# An id below 1024 is a language without a region and serves all its regions; the others stand for one region, or for one
# writing of the language.
LANGUAGES = {
    "ar": 1,
    "bg": 2,
    "zh-Hans": 4,
    "cs": 5,
    "da": 6,
    "de": 7,
    "el": 8,
    "es": 10,
    "fi": 11,
    "he": 13,
    "hu": 14,
    "it": 16,
    "ko": 18,
    "nl": 19,
    "nb": 20,
    "pl": 21,
    "ro": 24,
    "ru": 25,
    "sr-Latn": 26,
    "sk": 27,
    "sv": 29,
    "th": 30,
    "tr": 31,
    "sl": 36,
    "et": 37,
    "lv": 38,
    "lt": 39,
    "zh-Hant": 1028,
    "fr": 1036,
    "ja": 1041,
    "pt-BR": 1046,
    "hr": 1050,
    "pt-PT": 2070,
}

# Written from right to left; their dialogs stand in res/dialogs.
RIGHT_TO_LEFT = ("ar", "he")

# Shown by MessageBoxW, which mirrors its box when the text begins with two right-to-left marks.
MESSAGE_BOX_TEXTS = ("IDS_VERITOR_RUNTIME_INTRUSION", "IDS_VERITOR_BOOT_IMAGE_REPAIRED", "IDS_VERITOR_NOT_RECOVERED")
