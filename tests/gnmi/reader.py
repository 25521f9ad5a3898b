#!/usr/bin/python3
"""Reads a stream of all state until it is killed.

    reader.py ADDRESS
"""

import sys

from agent import Client

with Client(sys.argv[1]) as client, client.subscribe("/qos", encoding="PROTO") as stream:
    stream.until_sync()
    print("sync", flush=True)
    while True:
        stream.next()
