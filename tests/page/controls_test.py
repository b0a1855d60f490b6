"""Every control of the picture and of the camera."""
import json

import pytest
from browser import wait_for
from gateway import NAME, SERIAL
from picture_test import direction
from scene import pixels, stage_of


def middle(page):
    left, top, width, height = stage_of(page)
    return left + width // 2, top + height // 3


def degrees_seen(page):
    """How far a drag of 100 pixels turns: the closer, the less."""
    page.click("#home")
    x, y = middle(page)
    page.drag((x, y), (x - 100, y))
    return direction(page)[0]


def test_keys_turn_and_bring_back(page):
    page.js("(document.querySelector('#stage').focus(), 1)")
    page.keys("ArrowRight", "ArrowRight", "ArrowUp")
    yaw, pitch = direction(page)
    assert yaw > 0 and pitch > 0
    page.keys("Home")
    assert direction(page) == (0, 0)


def test_zoom_by_buttons_wheel_keys_and_two_fingers(page):
    wide = degrees_seen(page)
    x, y = middle(page)
    for closer, wider in ((lambda: page.click("#zoom-in"), lambda: page.click("#zoom-out")), (lambda: page.wheel((x, y), -240), lambda: page.wheel((x, y), 240)),
                          (lambda: page.keys("+", "+"), lambda: page.keys("-", "-")), (lambda: page.pinch((x, y), 80, 240), lambda: page.pinch((x, y), 240, 80))):
        page.js("(document.querySelector('#stage').focus(), 1)")
        before = page.js("document.querySelector('#heading').textContent")
        closer()
        page.drag((x, y), (x - 100, y))
        near = direction(page)[0] - int(before.split("°")[0])
        assert 0 < near < wide
        wider()
        page.click("#home")
    assert degrees_seen(page) == wide


def test_finger_turns(page):
    x, y = middle(page)
    page.drag((x, y), (x - 120, y + 60), "touch")
    yaw, pitch = direction(page)
    assert yaw > 3 and pitch > 3


def test_phone_turns_the_view(page):
    if page.name != "chromium":
        pytest.skip("only Chromium imitates a phone's sensors")
    page.drag((300, 200), (300, 260))
    page.wait("document.querySelector('#heading').textContent !== '0° 0°'")
    page.click("#phone")
    page.wait("document.querySelector('#phone').getAttribute('aria-pressed') === 'true'")
    page.devtools("DeviceOrientation.setDeviceOrientationOverride", alpha=0, beta=90, gamma=0)
    page.wait("document.querySelector('#heading').textContent === '0° 0°'")
    # Turned by 40 degrees to the right, and tilted up by 20.
    page.devtools("DeviceOrientation.setDeviceOrientationOverride", alpha=320, beta=110, gamma=0)
    page.wait("document.querySelector('#heading').textContent === '40° 20°'")
    page.click("#phone")
    page.devtools("DeviceOrientation.clearDeviceOrientationOverride")


def test_full_screen(page):
    if not page.js("document.hasFocus()"):
        pytest.skip("without a window manager this browser's window has no focus, which full screen needs")
    page.click("#fullscreen")
    page.wait("document.fullscreenElement?.id === 'stage-frame'")
    page.click("#fullscreen")
    page.wait("document.fullscreenElement === null")


def test_snapshot_of_the_view_and_of_the_whole_panorama(page):
    page.click("#snapshot")
    view = pixels(page.downloaded("view_*.png").read_bytes())
    assert view.shape[:2] == tuple(page.js("[document.querySelector('#stage').clientHeight, document.querySelector('#stage').clientWidth]"))
    page.click("#snapshot-whole")
    whole = pixels(page.downloaded("panorama_*.png").read_bytes())
    assert whole.shape == (960, 1920, 3)
    # The horizon: sky above, ground below, all around.
    for column in range(40, 1920, 240):
        sky, ground = whole[330:340, column].mean(axis=0), whole[620:630, column].mean(axis=0)
        assert sky[2] > sky[0] and ground[0] > ground[2]


def test_photo_bracket_and_gallery(page):
    page.click("#photo")
    page.wait("document.querySelector('#toasts').textContent.includes('Stored')")
    page.click("#options")
    page.js("(document.querySelector('#bracket').value = '1', document.querySelector('#stitch').checked = false, 1)")
    page.click("#options")
    page.click("#photo")
    page.wait("document.querySelector('#progress span').textContent.includes('of 3') || document.querySelector('#progress span').textContent.includes('3 pictures')")
    page.wait("document.querySelector('#toasts').textContent.includes('3 files')")
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    page.click("#tab-gallery")
    page.wait("document.querySelectorAll('.files li').length >= 5")
    page.wait("[...document.querySelectorAll('.files img')].every((image) => image.complete && image.naturalWidth > 0)")
    name = page.js("document.querySelector('.badge').parentElement.dataset.file")
    row = f".files li[data-file={json.dumps(name)}]"
    page.click(f"{row} .open")
    page.wait("document.querySelector('#viewer canvas') !== null")
    wait_for(lambda: pixels(page.screenshot())[300:500, 300:800].std() > 10, "a panorama that can be turned")
    before = pixels(page.screenshot())[200:500, 300:800]
    page.keys("ArrowRight", "ArrowRight", "ArrowRight")
    wait_for(lambda: abs(pixels(page.screenshot())[200:500, 300:800] - before).mean() > 3, "the turned panorama")
    page.keys("Escape")
    page.click(f"{row} a")
    assert page.downloaded(name).read_bytes()[:2] == b"\xff\xd8"
    page.click(f"{row} .about button")
    page.click("#question [value=yes]")
    page.wait(f"document.querySelector({json.dumps(row)}) === null")


def test_self_timer_counts_and_can_be_stopped(page):
    page.click("#options")
    page.js("(document.querySelector('#timer').value = '5', 1)")
    page.click("#options")
    page.click("#photo")
    page.wait("/^[1-5]$/.test(document.querySelector('#countdown').textContent) && !document.querySelector('#countdown').hidden")
    page.click("#photo")
    page.wait("document.querySelector('#countdown').hidden && document.querySelector('#progress').hidden")


def test_recording_with_its_time_and_what_is_left(page):
    its_time = r"/^\d+:\d\d, \d+:\d\d/.test(document.querySelector('#recording span').textContent)"
    page.click("#record")
    page.wait(its_time)
    page.click("#record")
    page.wait("document.querySelector('#recording').hidden && document.querySelector('#toasts').textContent.includes('VID_')")
    page.click("#record")
    page.wait(f"!document.querySelector('#recording').hidden && {its_time}")
    page.click("#record-cancel")
    page.click("#question [value=yes]")
    page.wait("document.querySelector('#recording').hidden")


def test_outputs_begin_and_end(page, gateway):
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    page.click("#tab-outputs")
    page.click("#output-stitched")
    page.click("#output-address")
    name = f"{page.name}.ts"
    page.type(name)
    page.click("#output-begin")
    page.wait("document.querySelector('.outputs .state')?.textContent.startsWith('writing')")
    page.wait("/[1-9]\\d* pictures/.test(document.querySelector('.outputs .state').textContent)")
    page.click(".outputs button")
    page.wait("document.querySelector('.outputs li') === null")


def test_battery_and_card_as_they_change(page, gateway):
    gateway.camera.tell("battery 1 40")
    page.wait("document.querySelector('#battery').textContent.includes('40')")
    gateway.camera.tell("card 2")
    page.wait("document.querySelector('#card').textContent.includes('full')")
    gateway.camera.tell("card 0")
    page.wait("document.querySelector('#card').textContent.includes('free')")
    gateway.camera.tell("key 3")
    page.wait("document.querySelector('#toasts').textContent.includes('key')")


def test_link_tells_what_it_does(page):
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    page.click("#tab-link")
    page.wait("Number(document.querySelector('[data-fact=rate]').textContent) > 0")
    page.wait("document.querySelector('[data-fact=bits]').textContent.includes('bit/s')")
    assert page.js("document.querySelector('[data-fact=serialNumber]').textContent") == SERIAL
    page.wait("/\\d+ × \\d+/.test(document.querySelector('[data-fact=size]').textContent)")


def test_markup_in_texts_of_the_camera_stays_text(page):
    assert page.js("document.querySelector('#cameras').selectedOptions[0].textContent") == NAME
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    page.click("#tab-link")
    page.wait(f"document.querySelector('[data-fact=name]').textContent === {json.dumps(NAME)}")
    assert page.js("document.querySelectorAll('#panel img[src=x], #panel dd b, header b b').length") == 0


def test_dark_and_light(page):
    colours = set()
    for _ in range(2):
        page.click("#theme")
        colours.add(page.js("getComputedStyle(document.querySelector('.bar')).backgroundColor"))
    assert len(colours) == 2
