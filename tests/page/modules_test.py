"""The page's modules that compute, each in the browser that will run them."""
import pytest

# The example of docs/lens-offset.md: a circle of radius 97.5 around (100, 100) in 200x200, model 7, so that a degree is a pixel.
EXAMPLE = "1_97.5_100_100_0_0_0_200_200_7"


@pytest.fixture(scope="module")
def modules(browser, gateway):
    browser.open(gateway.address)
    return browser


def call(page, module, expression):
    return page.js(f"import('/{module}.js').then((m) => {expression})")


@pytest.mark.parametrize("longitude, latitude, x, y", [(45, 0, 145, 100), (0, 45, 100, 55), (0, 0, 100, 100), (-30, 0, 70, 100)])
def test_a_direction_is_seen_where_the_formulas_say(modules, longitude, latitude, x, y):
    sight = call(modules, "lens", f"m.sightOf(m.parseOffset('{EXAMPLE}').lenses[0], m.directionAt({longitude}, {latitude}))")
    assert (sight["x"] * 200, sight["y"] * 200) == pytest.approx((x, y), abs=1e-6)


@pytest.mark.parametrize("turned, x, y", [("30_0_0", 70, 100), ("0_30_0", 100, 130), ("-30_0_0", 130, 100)])
def test_a_turned_lens_sees_what_is_forward_elsewhere(modules, turned, x, y):
    sight = call(modules, "lens", f"m.sightOf(m.parseOffset('{EXAMPLE.replace('_0_0_0_', f'_{turned}_')}').lenses[0], [0, 0, 1])")
    assert (sight["x"] * 200, sight["y"] * 200) == pytest.approx((x, y), abs=1e-6)


def test_other_models_see_200_degrees(modules):
    assert call(modules, "lens", f"m.parseOffset('{EXAMPLE}').fieldOfView") == 195
    assert call(modules, "lens", f"m.parseOffset('{EXAMPLE[:-1]}8').fieldOfView") == 200


@pytest.mark.parametrize("text", ["", "1", "3_1_1_1_0_0_0_200_200_7", EXAMPLE + "_1", EXAMPLE.replace("97.5", "nan"), EXAMPLE.replace("97.5", "9e1"), EXAMPLE.replace("_200_", "_2_")])
def test_an_offset_that_makes_no_sense_is_none(modules, text):
    assert call(modules, "lens", f"m.parseOffset('{text}')") is None


def test_records_are_cut_wherever_the_bytes_are(modules):
    # A description "{}" and a key picture of 3 bytes at 1 s.
    found = call(modules, "units", """(() => {
      const bytes = [12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 123, 125, 13, 0, 0, 0, 1, 1, 64, 66, 15, 0, 0, 0, 0, 0, 7, 8, 9];
      return bytes.map((_, cut) => {
        const cutter = new m.UnitCutter();
        const records = [...cutter.push(Uint8Array.from(bytes.slice(0, cut))), ...cutter.push(Uint8Array.from(bytes.slice(cut)))];
        return records.map(({ kind, flags, time, payload }) => [kind, flags, time, ...payload]);
      });
    })()""")
    assert found == [[[0, 0, 0, 123, 125], [1, 1, 1000000, 7, 8, 9]]] * 33


@pytest.mark.parametrize("length", ["9, 0, 0, 0", "0, 0, 0, 255"])
def test_a_record_whose_length_makes_no_sense_ends_the_stream(modules, length):
    assert call(modules, "units", f"(() => {{ try {{ new m.UnitCutter().push(Uint8Array.from([{length}])); return false; }} catch {{ return true; }} }})()")


def test_numbers_of_records_are_little_endian(modules):
    assert call(modules, "record", "m.packed(['u32', 'u8', 's16'], [60000, 255, -3])") == "60ea0000fffdff"
    assert call(modules, "record", "m.unpacked(['u32', 'u8', 's16'], '60ea0000fffdff')") == [60000, 255, -3]
    assert call(modules, "record", "m.unpacked(['u32', 'u8', 's16'], '60ea0000fffd')") is None


def test_planes_become_colours(modules):
    full = call(modules, "colour", "[[76, 85, 255], [255, 128, 128]].map((p) => m.apply(m.fromPlanes({ fullRange: true, matrix: 6 }), p.map((v) => v / 255)).map((v) => Math.round(255 * v)))")
    assert full == [[254, 0, 0], [255, 255, 255]]  # red and white
    limited = call(modules, "colour", "[[16, 128, 128], [235, 128, 128]].map((p) => m.apply(m.fromPlanes({ fullRange: false, matrix: 1 }), p.map((v) => v / 255)).map((v) => Math.round(255 * v)))")
    assert limited == [[0, 0, 0], [255, 255, 255]]


def test_a_browser_that_takes_full_range_for_limited_is_corrected(modules):
    corrected = call(modules, "colour", """(() => {
      const shown = m.kProbeWanted.map((colour) => colour.map((value) => (255 * value - 16) / 219));
      return m.apply(m.correctionOf(shown, m.kProbeWanted), [0.25, 0.5, 0.75]).map((value) => Math.round(1000 * value));
    })()""")
    assert corrected == [round(1000 * (value * 219 + 16) / 255) for value in (0.25, 0.5, 0.75)]


@pytest.mark.parametrize("alpha, beta, gamma, angle, heading, pitch", [
    (0, 90, 0, 0, 0, 0), (270, 90, 0, 0, 90, 0), (0, 110, 0, 0, 0, 20), (0, 0, -90, 90, 90, 0), (0, 0, 90, 270, -90, 0)])
def test_a_phone_looks_out_of_its_back(modules, alpha, beta, gamma, angle, heading, pitch):
    found = call(modules, "phone", f"(() => {{ const axes = m.axesOf({{ alpha: {alpha}, beta: {beta}, gamma: {gamma} }}, {angle}); return [m.headingOf(axes), m.pitchOf(axes), ...axes.down]; }})()")
    assert found[:2] == pytest.approx([heading, pitch], abs=1e-6)
    assert found[3] == pytest.approx(1 if pitch == 0 else 0.9397, abs=1e-3)  # what is down on the screen is down
