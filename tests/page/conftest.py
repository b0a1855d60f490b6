"""One gateway and one browser of each kind for all tests of the page."""
import pytest

from browser import Chromium, Firefox
from gateway import Gateway

KINDS = {"chromium": Chromium, "firefox": Firefox}
# A refused request is shown by the page, and by the browser as well.
EXPECTED = ("Failed to load resource", "live picture ended", "can’t establish a connection", "was interrupted while")


@pytest.fixture(scope="session")
def gateway():
    made = Gateway()
    yield made
    made.close()


@pytest.fixture(scope="session", params=sorted(KINDS))
def browser(request):
    made = KINDS[request.param]()
    yield made
    made.close()


@pytest.fixture
def page(browser, gateway):
    """The page, newly loaded, at rest, with the picture shown. Fails when the browser has complained of anything."""
    browser.messages.clear()
    browser.size(900, 600)
    browser.open(gateway.address)
    if browser.js("[localStorage.length, localStorage.clear()][0]") > 1:  # a choice of another test; the camera's is always there
        browser.open(gateway.address)
    wait_for_picture(browser)
    yield browser
    complaints = [text for text in browser.messages if text.startswith(("error", "warn")) and not any(one in text for one in EXPECTED)]
    assert not complaints


def wait_for_picture(browser):
    browser.wait("document.querySelector('#state').dataset.state === '' && document.querySelector('#link').dataset.status === 'streaming'")
    browser.wait("/ms/.test(document.querySelector('#delay').textContent)")
