"""Where the simulated scene's lamps are on a screenshot, and where each view must show them."""
import io
import math

import av
import numpy

from browser import wait_for

LAMPS = ((24.0, 10.5), (204.0, 10.5))  # longitude and latitude, degrees; lit for the first 100 ms of each second
WIDEST = 110.0  # degrees along the shorter side, without zoom


def pixels(png):
    with av.open(io.BytesIO(png)) as container:
        return next(container.decode(video=0)).to_ndarray(format="rgb24").astype(numpy.int16)


def lit(picture):
    red, green, blue = picture[..., 0], picture[..., 1], picture[..., 2]
    return (red > 225) & (green > 25) & (green < 115) & (blue < 100)


def direction(longitude, latitude):
    lon, lat = math.radians(longitude), math.radians(latitude)
    return math.sin(lon) * math.cos(lat), math.sin(lat), math.cos(lon) * math.cos(lat)  # right, up, forward


def seen_from(to, yaw, pitch):
    """The direction in the axes of who looks there."""
    x, y, z = to
    cos, sin = math.cos(math.radians(yaw)), math.sin(math.radians(yaw))
    x, z = x * cos - z * sin, x * sin + z * cos
    cos, sin = math.cos(math.radians(pitch)), math.sin(math.radians(pitch))
    return x, y * cos - z * sin, y * sin + z * cos


def place_in_sphere(lamp, yaw, pitch, zoom, width, height):
    x, y, z = seen_from(direction(*lamp), yaw, pitch)
    scale = min(width, height) / 2 / math.tan(math.radians(WIDEST / zoom / 2))
    return (width / 2 + scale * x / z, height / 2 - scale * y / z) if z > 0.1 else None


def place_in_panorama(lamp, yaw, pitch, zoom, width, height):
    across = (2 * height if width > 2 * height else width) * zoom
    turned = (lamp[0] - yaw + 180) % 360 - 180
    return width / 2 + across * turned / 360, height / 2 - across * (lamp[1] - pitch) / 360


def place_in_planet(lamp, yaw, pitch, zoom, width, height):
    x, y, z = seen_from(direction(*lamp), yaw, pitch)
    scale = min(width, height) / 2 / (1.9 / zoom)
    return width / 2 + scale * x / (1 + z), height / 2 - scale * y / (1 + z)


PLACES = {"sphere": place_in_sphere, "panorama": place_in_panorama, "planet": place_in_planet}


def stage_of(page):
    """The picture's part of the screen: left, top, width, height."""
    return page.js("(() => { const r = document.querySelector('#stage').getBoundingClientRect(); return [r.x, r.y, r.width, r.height].map(Math.round); })()")


def expect_lamp(page, projection, yaw, pitch, zoom, lamp=LAMPS[0], radius=26):
    """Waits until the lamp is lit where the view must show it."""
    left, top, width, height = stage_of(page)
    x, y = PLACES[projection](lamp, yaw, pitch, zoom, width, height)
    column, row = round(left + x), round(top + y)
    found = []

    def is_lit():
        picture = pixels(page.screenshot())
        found[:] = [tuple(place[::-1]) for place in numpy.argwhere(lit(picture))[:5]]
        return lit(picture[max(row - radius, 0):row + radius, max(column - radius, 0):column + radius]).sum() >= 4

    wait_for(is_lit, lambda: f"a lit lamp near {column}, {row} in {projection} at {yaw}, {pitch}; red pixels of the last one: {found}", pause=0)
