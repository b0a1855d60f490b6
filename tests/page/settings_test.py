"""Each setting is set on the page and read from the camera."""
import json
import re

# Operations whose names say that they set something, but which are no settings of the camera: texts of single files.
OF_FILES = {"msgReqSetPhotoExtraInfoWithFileName", "msgReqSetVideoExtraInfoWithFileName"}
# Row, the values typed in, and what the camera must then tell of it.
TOLD = (
    ("flicker", ["2"], "msgReqGetFlickerWithRebackBlock", {"ucharValue": 2}),
    ("selfTimer", ["7"], "msgReqGetPhotoSelfTimerWithRebackBlock", {"intValue": 7}),
    ("timelapse", ["60000", "1", "2", "3", "4"], "msgReqGetTimelapseInfoWithRebackBlock", {"NSValue1": "60ea000001020304"}),
    ("timelapseBias", ["-3"], "msgReqGetTimelapseEVBiasWithRebackBlock", {"shortValue": -3}),
    ("recordLimit", ["90"], "msgReqGetRecTimeLimitWithRebackBlock", {"intValue": 90}),
    ("audioBitrate", ["96000"], "msgReqGetAudioBitrateWithRebackBlock", {"uintValue": 96000}),
    ("triplePress", ["1"], "msgReqGetTriplePressModeWithRebackBlock", {"ucharValue": 1}),
    ("gpsTimeout", ["9"], "msgReqGetGPSTimeoutWithRebackBlock", {"ushortValue": 9}),
    ("exposureBias", ["-2"], "msgReqGetEVIndexWithRebackBlock", {"ushortValue": 10}),
    ("activeTime", ["1700000000", "-60"], "msgReqGetActiveTimeWithRebackBlock", {"intValue": 1700000000, "intValue2": -60}),
    ("whiteBalanceGain", ["1", "2", "-3", "4", "-5", "6"], "msgReqGetCalibWBGainWithRebackBlock", {"NSValue1": "0102fdff0400fbff0600"}),
    ("vignetteLuma", ["1", "2", "-3", "4"], "msgReqGetCalibVignetteLumaWithRebackBlock", {"NSValue1": "0102fdff0400"}),
    ("vignetteGain", ["1", "2", "3", "4", "5", "6", "7", "-8"], "msgReqGetCalibVigGainWithRebackBlock", {"NSValue1": "010203000400050006000700f8ff"}),
)
# What the camera cannot be asked: the page tells what was set last, in words.
REMEMBERED = (
    ("metering", ["3"], "mode 3"), ("whiteBalance", ["2"], "mode 2"), ("brightness", ["-7"], "-7"), ("contrast", ["64"], "64"), ("saturation", ["65"], "65"),
    ("hue", ["5"], "5"), ("sharpness", ["6"], "6"), ("effect", ["1"], "mode 1"), ("stillProgram", ["1", "2"], "mode 1, 2"), ("manualExposure", ["1", "2", "3"], "mode 1, 2, 3"),
    ("photoSize", ["1"], "size 1"), ("resolution", ["6"], "2160 × 1080, 25 a second"), ("videoBitrate", ["0", "20"], "mode 0, 20"), ("mute", ["1"], "off"),
    ("keyFunction", ["2"], "mode 2"), ("imageProcessing", ["1"], "mode 1"), ("meteringWeights", ["07" * 96], "07" * 96),
)


def show_settings(page):
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    page.click("#tab-settings")
    page.js("(document.querySelector('details').open = true, 1)")
    page.wait("[...document.querySelectorAll('.row .value')].every((value) => value.textContent !== '…')")


def put(page, key, values):
    """Types the values in, and leaves the field or presses the button."""
    page.js(f"""(() => {{
      const row = document.querySelector('[data-setting={key}]');
      const inputs = [...row.querySelectorAll('input, select')];
      {json.dumps(values)}.forEach((value, at) => {{ inputs[at].value = value; }});
      const button = row.classList.contains('wide') ? row.querySelector('button') : null;
      if (button) button.click(); else inputs[0].dispatchEvent(new Event('change'));
      return 1;
    }})()""")


def value_of(key):
    return f"document.querySelector('[data-setting={key}] .value').textContent"


def test_every_setting_that_the_camera_tells_is_set_and_shown(page, gateway):
    show_settings(page)
    for key, values, operation, told in TOLD:
        before = page.js(value_of(key))
        put(page, key, values)
        page.wait(f"{value_of(key)} !== {json.dumps(before)} || {value_of(key)}.includes({json.dumps(values[0])})")
        assert gateway.call(operation) == told, key


def test_what_the_camera_cannot_be_asked_is_remembered_in_words(page):
    show_settings(page)
    for key, values, words in REMEMBERED:
        put(page, key, values)
        page.wait(f"{value_of(key)} === {json.dumps('last set here: ' + words)}")


def test_serial_number_lens_and_origin_offset_clock_and_system(page, gateway):
    show_settings(page)
    put(page, "serialNumber", ["E1A0009"])
    page.wait(f"{value_of('serialNumber')} === 'now E1A0009'")
    offset = "2_745.000_760.000_760.000_0.000_0.300_-0.400_750.000_2280.000_760.000_179.800_-0.200_0.500_3040_1520_7"
    put(page, "mediaOffset", ["9", "9", offset])
    page.wait(f"{value_of('mediaOffset')}.startsWith('now 2_745')")
    assert gateway.call("msgReqGetMediaOffset", 9, 9) == {"nsString": offset}
    put(page, "originOffset", ["3", "3", "1", "2", "3", "-4", "5", "6", "3040", "1520"])
    page.wait(f"{value_of('originOffset')}.startsWith('now ')")
    page.click("[data-setting=localTime] button")
    page.wait(f"{value_of('localTime')}.startsWith('last set here')")
    put(page, "systemCancel", ["9"])
    page.wait(f"{value_of('systemCancel')}.startsWith('refused')")
    put(page, "system", ["77", "0"])
    page.click("#question [value=yes]")
    page.wait(f"{value_of('system')}.startsWith('refused')")


def test_a_stepper_sets_too(page):
    show_settings(page)
    page.click("[data-setting=brightness] .stepper button:last-child")
    page.wait(f"{value_of('brightness')} === 'last set here: +1'")


def test_no_setting_of_the_camera_is_missing(page, gateway):
    show_settings(page)
    sets = page.js("import('/catalogue.js').then(({ kSections }) => kSections.flatMap(({ rows }) => rows.map(({ set }) => set)))")
    shown = page.js("document.querySelectorAll('[data-setting]').length")
    assert shown == len(sets) == len(set(sets))
    described = json.dumps(gateway.ask("openapi.json"))
    operations = set(re.findall(r'"(msg(?:Cmd|Req)(?:Req)?Set\w+)"', described))
    assert len(operations) > 30
    assert operations - set(sets) == OF_FILES
