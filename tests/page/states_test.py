"""The page goes on by itself, whatever goes away; and it can be used in any size and by keyboard alone."""
from conftest import wait_for_picture
from gateway import Gateway
from picture_test import SPHERE_ZOOM
from scene import expect_lamp


def state_is(page, name):
    page.wait(f"document.querySelector('#state').dataset.state === '{name}'")


def test_camera_goes_away_and_comes_back(page, gateway):
    gateway.camera.tell("unplug")
    state_is(page, "away")
    assert page.js("document.querySelector('#link').dataset.status") == "absent"
    assert page.js("document.querySelector('#photo').disabled") is True
    gateway.camera.tell("plug")
    wait_for_picture(page)
    expect_lamp(page, "sphere", 0, 0, SPHERE_ZOOM)
    assert page.js("document.querySelector('#photo').disabled") is False


def test_server_goes_away_and_comes_back(page, gateway):
    gateway.stop()
    try:
        state_is(page, "serverAway")
    finally:
        gateway.start()
    wait_for_picture(page)
    expect_lamp(page, "sphere", 0, 0, SPHERE_ZOOM)


def test_a_token_comes_with_the_address_and_is_kept(browser, tmp_path):
    (tmp_path / "token").write_text("0123456789abcdefghij\n")
    (tmp_path / "token").chmod(0o600)
    guarded = Gateway(serve_options=("--token-file", str(tmp_path / "token")))
    try:
        browser.open(guarded.address)
        state_is(browser, "refusedToken")
        browser.open("about:blank")
        browser.open(f"{guarded.address}#token=0123456789abcdefghij")
        wait_for_picture(browser)
        assert browser.js("location.hash") == ""
        browser.open(guarded.address)
        wait_for_picture(browser)
    finally:
        browser.js("(document.cookie = 'zel_token=; Path=/; Max-Age=0', 1)")
        guarded.close()


def test_everything_fits_on_a_phone(page):
    for width, height in ((360, 640), (390, 844), (740, 360)):
        page.size(width, height)
        page.wait(f"innerWidth === {width}")
        outside = page.js("""[...document.querySelectorAll('.bar button, .bar select, .dock button')].filter((one) => one.checkVisibility())
          .filter((one) => { const r = one.getBoundingClientRect(); return r.left < 0 || r.top < 0 || r.right > innerWidth + 1 || r.bottom > innerHeight + 1; })
          .map((one) => one.id)""")
        assert outside == [], (width, height)
        assert page.js("document.documentElement.scrollWidth <= innerWidth")
        page.click("#photo")
    page.size(390, 844)
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    for tab in ("gallery", "settings", "outputs", "link"):
        page.click(f"#tab-{tab}")
        assert page.js(f"document.querySelector('#page-{tab}').scrollWidth <= innerWidth"), tab
    page.click("#panel-close")


def test_keyboard_alone_reaches_everything_with_a_visible_focus(page):
    page.js("(document.querySelector('#stage').focus(), 1)")
    wanted = {"zoom-in", "zoom-out", "home", "view-sphere", "options", "photo", "record", "sound", "snapshot", "snapshot-whole", "phone", "fullscreen",
              "cameras", "theme", "help", "panel-toggle"}
    reached = set()
    has_focus = page.js("document.hasFocus()")  # a window without it, where no window manager gives it, shows none
    for _ in range(60):
        page.keys("Tab")
        focused = page.js("""(() => { const e = document.activeElement; const s = getComputedStyle(e);
          return [e.id, e === document.body || (s.outlineStyle !== 'none' && parseFloat(s.outlineWidth) >= 2)]; })()""")
        assert focused[1] or not has_focus, f"the focus on {focused[0]} cannot be seen"
        reached.add(focused[0])
        if wanted <= reached:
            break
    assert wanted - reached == set()
    page.js("(document.querySelector('#view-sphere').focus(), 1)")
    page.keys("ArrowRight")
    assert page.js("document.activeElement.id") == "view-panorama"


def test_keys_of_the_picture_do_what_the_buttons_do(page):
    page.js("(document.querySelector('#stage').focus(), 1)")
    page.keys("3")
    page.wait("document.querySelector('#view-planet').getAttribute('aria-checked') === 'true'")
    page.keys("Shift+?")
    page.wait("document.querySelector('#keys').open")
    page.keys("Escape")
    page.wait("!document.querySelector('#keys').open")


def test_everything_that_can_be_used_has_a_name(page):
    if page.js("document.querySelector('#panel').hidden"):
        page.click("#panel-toggle")
    for tab in ("gallery", "settings", "outputs", "link"):
        page.click(f"#tab-{tab}")
        nameless = page.js("""[...document.querySelectorAll('button, a, input, select, [role=tabpanel], [role=application]')].filter((one) => one.checkVisibility())
          .filter((one) => !(one.getAttribute('aria-label') || one.textContent.trim() || one.labels?.[0]?.textContent.trim() ||
            document.getElementById(one.getAttribute('aria-labelledby'))?.textContent)).map((one) => one.outerHTML)""")
        assert nameless == [], tab


def test_no_text_is_missing_in_the_table(page):
    assert page.js("[...document.querySelectorAll('[data-text], [data-label]')].filter((one) => one.dataset.text === one.textContent && one.dataset.text).map((one) => one.dataset.text)") == []
