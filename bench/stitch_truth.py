#!/usr/bin/env python3
"""How true a stitched picture is, beside FFmpeg's v360 filter (linear).

A known panorama is made into a picture of two fisheye circles by FFmpeg, stitched by zelcam and by v360, and both are
compared with it: once as it is, and once with one lens 15 % darker. The seam is a band of 3 degrees at both places where
the lenses meet. PSNR in dB and SSIM, of luma.

  bench/stitch_truth.py ZELCAM [PANORAMA.jpg]
"""
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

WIDTH, HEIGHT = 3040, 1520
OFFSET = "2_760.000_760.000_760.000_0.000_0.000_0.000_760.000_2280.000_760.000_180.000_0.000_0.000_3040_1520_7"
LENS = "yaw=180:w=3040:h=1520"  # v360's second circle is the one that looks forward
DARKER = (
    "split[a][b];[a]crop=iw/2:ih:0:0,lutrgb=r=val*0.85:g=val*0.85:b=val*0.85[left];"
    "[b]crop=iw/2:ih:iw/2:0[right];[left][right]hstack"
)
BAND = WIDTH * 3 // 360 // 2 * 2


def ffmpeg(*arguments):
    done = subprocess.run(["ffmpeg", "-nostdin", "-v", "info", "-y", *map(str, arguments)], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(done.stderr[-2000:])
    return done.stderr


def likeness(picture, truth, crop):
    chain = f"[0]{crop},format=gray,split[a][b];[1]{crop},format=gray,split[c][d];[a][c]psnr;[b][d]ssim"
    report = ffmpeg("-i", picture, "-i", truth, "-filter_complex", chain, "-f", "null", "-")
    psnr = re.search(r"PSNR y:([\d.]+|inf)", report).group(1)
    ssim = re.search(r"SSIM Y:([\d.]+)", report).group(1)
    return f"{float(psnr):6.2f} dB {float(ssim):.4f}"


def seam(at):
    return f"crop={BAND}:{HEIGHT * 2 // 3}:{at - BAND // 2}:{HEIGHT // 6}"


def compare(zelcam, folder, circles, truth):
    film, ours, theirs = folder / "circles.h264", folder / "ours.png", folder / "theirs.png"
    ffmpeg("-i", circles, "-pix_fmt", "yuvj420p", "-c:v", "libx264", "-qp", 4, "-f", "h264", film)
    subprocess.run(
        [zelcam, "thumbnail", film, "--offset", OFFSET, "--size", f"{WIDTH}x{HEIGHT}", "-o", ours],
        check=True, stdout=subprocess.DEVNULL)
    back = f"v360=dfisheye:e:ih_fov=195:iv_fov=195:interp=linear:{LENS}"
    ffmpeg("-i", film, "-vf", back, "-frames:v", 1, theirs)
    both = f"split[l][r];[l]{seam(WIDTH // 4)}[m];[r]{seam(3 * WIDTH // 4)}[n];[m][n]hstack"
    for name, picture in (("zelcam", ours), ("v360", theirs)):
        print(f"  {name:8} whole {likeness(picture, truth, 'null')}   seam {likeness(picture, truth, both)}")


def main():
    if {"-h", "--help"} & set(sys.argv[1:]):
        print(__doc__)
        return
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    media = Path(os.environ.get("ZEL_TEST_MEDIA", Path(__file__).resolve().parents[2] / "shared/data"))
    panorama = Path(sys.argv[2]) if len(sys.argv) == 3 else media / "equirect/075_r0012075.jpg"
    if not panorama.exists():
        print(f"left out: there is no panorama {panorama}; name one")
        return
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        truth, circles = folder / "truth.png", folder / "circles.png"
        ffmpeg("-i", panorama, "-vf", f"scale={WIDTH}:{HEIGHT}:flags=area", "-frames:v", 1, truth)
        there = f"v360=e:dfisheye:h_fov=195:v_fov=195:interp=lanczos:{LENS}"
        for what, chain in (("equal lenses", there), ("one lens 15 % darker", f"{there},format=rgb24,{DARKER}")):
            print(what)
            ffmpeg("-i", truth, "-filter_complex", f"[0]{chain}", "-frames:v", 1, circles)
            compare(sys.argv[1], folder, circles, truth)


if __name__ == "__main__":
    main()
