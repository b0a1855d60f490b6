"""What an exchange with the answering camera takes in Python, and what importing the package does: prints seconds.

    python_exchanges.py waited|awaited FOLDER COUNT
    python_exchanges.py import
"""
import asyncio
import statistics
import subprocess
import sys
from time import perf_counter

from zeltarkasdk import Camera


def waited(folder: str, count: int) -> float:
    times = []
    with Camera.open(accessories=folder) as camera:
        for _ in range(count):
            begin = perf_counter()
            camera.set_white_balance(2)
            times.append(perf_counter() - begin)
    return statistics.median(times)


async def awaited(folder: str, count: int) -> float:
    times = []
    async with Camera.open(accessories=folder) as camera:
        for _ in range(count):
            begin = perf_counter()
            await camera.set_white_balance(2)
            times.append(perf_counter() - begin)
    return statistics.median(times)


def process(program: str) -> float:
    begin = perf_counter()
    subprocess.run([sys.executable, "-c", program], check=True)
    return perf_counter() - begin


if sys.argv[1] == "import":
    print(statistics.median(process("import zeltarkasdk") - process("") for _ in range(15)))
elif sys.argv[1] == "waited":
    print(waited(sys.argv[2], int(sys.argv[3])))
else:
    print(asyncio.run(awaited(sys.argv[2], int(sys.argv[3]))))
