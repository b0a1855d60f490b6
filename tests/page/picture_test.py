"""The live picture, looked at: the scene's lamp must be where the view says."""
import re

import pytest
from browser import Chromium, wait_for
from conftest import wait_for_picture
from scene import LAMPS, expect_lamp, pixels, stage_of

SPHERE_ZOOM = 1.45  # the sphere's, at the beginning


def direction(page):
    """Where the view says that it looks."""
    yaw, pitch = re.findall(r"-?\d+", page.js("document.querySelector('#heading').textContent"))
    return int(yaw), int(pitch)


def turn(page, degrees, zoom=SPHERE_ZOOM):
    """Drags the picture that far, in steps that fit on it."""
    left, top, width, height = stage_of(page)
    pixels_each = min(width, height) / (110 / zoom)
    for step in [degrees / 3] * 3:
        middle, row = left + width // 2, top + height // 3
        half = round(step * pixels_each / 2)
        page.drag((middle + half, row), (middle - half, row))


def test_lamp_is_where_the_view_says(page):
    expect_lamp(page, "sphere", 0, 0, SPHERE_ZOOM)


def test_lamp_is_where_the_view_says_after_turning_by_90_degrees(page):
    turn(page, -21)
    yaw, pitch = direction(page)
    assert abs(yaw - 339) <= 1
    expect_lamp(page, "sphere", yaw, pitch, SPHERE_ZOOM)
    turn(page, 90)
    yaw, pitch = direction(page)
    assert abs(yaw - 69) <= 2
    expect_lamp(page, "sphere", yaw, pitch, SPHERE_ZOOM)


def test_lamp_behind_is_seen_by_the_other_lens(page):
    turn(page, 180)
    yaw, pitch = direction(page)
    expect_lamp(page, "sphere", yaw, pitch, SPHERE_ZOOM, LAMPS[1])


@pytest.mark.parametrize("projection, pitch", [("panorama", 0), ("planet", -90)])
def test_other_views_show_the_lamp_too(page, gateway, projection, pitch):
    # In its full size, whatever the machine's speed: the lamp is small here.
    width, height = stage_of(page)[2:]
    page.open(f"{gateway.address}?canvas={width}x{height}")
    wait_for_picture(page)
    page.click(f"#view-{projection}")
    assert page.js(f"document.querySelector('#view-{projection}').getAttribute('aria-checked')") == "true"
    expect_lamp(page, projection, 0, pitch, 1, radius=16)


def test_both_lenses_are_shown_as_the_camera_sends_them(page):
    page.click("#view-lenses")
    left, top, width, height = stage_of(page)

    def is_shown():
        picture = pixels(page.screenshot())[top:top + height, left:left + width]
        row = height // 2 - width // 8  # half a radius above the centres
        # Between the circles and beside them it is black, within them is the sky.
        dark = [picture[row, column].max() < 60 for column in (4, width // 2, width - 5)]
        sky = [picture[row, column + 8:column + 20, 2].mean() > 120 for column in (width // 4, 3 * width // 4)]  # beside the meridian
        return all(dark) and all(sky)
    wait_for(is_shown, "two circles with black between them")


def test_without_a_secure_context_the_picture_is_shown_too(browser, gateway):
    browser.size(900, 600)
    browser.open(gateway.plain_address)
    assert browser.js("isSecureContext") is False
    wait_for_picture(browser)
    expect_lamp(browser, "sphere", 0, 0, SPHERE_ZOOM)
    browser.click("#phone")
    browser.wait("document.querySelector('#toasts').textContent.includes('https')")


def test_sound_comes_with_the_picture(page):
    page.click("#sound")
    assert page.js("document.querySelector('#sound').getAttribute('aria-pressed')") == "true"
    wait_for_picture(page)
    page.js("(document.querySelector('#panel').hidden ? document.querySelector('#panel-toggle').click() : 0, document.querySelector('#tab-link').click(), 1)")
    page.wait("document.querySelector('[data-fact=way]').textContent === 'video element'")
    page.click("#panel-close")
    page.click("#sound")
    page.wait("document.querySelector('[data-fact=way]').textContent === 'WebCodecs'")


def test_two_browsers_look_at_once(page, gateway):
    other = Chromium()
    try:
        other.size(800, 600)
        other.open(gateway.address)
        wait_for_picture(other)
        wait_for_picture(page)
        expect_lamp(other, "sphere", 0, 0, SPHERE_ZOOM)
        expect_lamp(page, "sphere", 0, 0, SPHERE_ZOOM)
    finally:
        other.close()
