#!/usr/bin/env python3
"""Stands in for paint-picture-helper and does wrong what the name it is called by says. Makes the
symbolic links by which it is called when it is run as:  fake_helper.py FOLDER"""
import array
import fcntl
import mmap
import os
import socket
import struct
import sys

MAGIC = 0x50504831
REQUEST = struct.Struct("=6IQQqq6d")
REPLY = struct.Struct("=IIddQ")
VERSION = b"0.1.0"
FIND, INBOX, MEASURE, DRAW = 1, 2, 3, 4
F_ADD_SEALS, SIZE_SEALS = 1033, 2 | 4
WAYS = ("old version", "short greeting", "no greeting", "dies at data", "dies at picture", "says nonsense",
        "answers too much", "says nothing", "infinite size", "memory that shrinks", "too large a picture",
        "unsealed picture", "no picture", "unknown result")


def memory(size, seals=SIZE_SEALS):
    number = os.memfd_create("fake", os.MFD_ALLOW_SEALING)
    os.ftruncate(number, size)
    fcntl.fcntl(number, F_ADD_SEALS, seals)
    return number


def box(size):
    return size if size > 4 << 20 else max(64 << 10, 1 << (size - 1).bit_length())


def serve(way):
    end = socket.socket(fileno=3)

    def say(message, descriptor=None):
        extra = [] if descriptor is None else [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [descriptor]))]
        end.sendmsg([message], extra)

    if os.fork() != 0:
        os._exit(0)
    if way == "no greeting":
        return
    if way == "short greeting":
        return say(struct.pack("=I", MAGIC))
    say(struct.pack("=I28s", MAGIC, b"0.0.9" if way == "old version" else VERSION))
    while request := end.recv(REQUEST.size):
        _, order, _, _, _, _, _, length, width, height, *_ = REQUEST.unpack(request)
        done = REPLY.pack(MAGIC, 1, 8, 8, 0)
        if order == FIND:
            say(done)
        elif order == INBOX:
            if way == "dies at data":
                return
            say(done, memory(box(length), 0 if way == "memory that shrinks" else SIZE_SEALS))
        elif way == "dies at picture":
            return
        elif way == "says nothing":
            end.recv(1)
        elif way == "says nonsense":
            say(bytes(REPLY.size))
        elif way == "answers too much":
            say(done + b"more")
        elif way == "unknown result":
            say(REPLY.pack(MAGIC, 99, 8, 8, 0))
        elif way == "infinite size":
            say(REPLY.pack(MAGIC, 1, float("inf"), 8, 0))
        elif order == MEASURE or way == "no picture":
            say(done)
        else:
            size = width * height * 4
            say(done, memory(box(size * 4 if way == "too large a picture" else size)))


def main():
    name = os.path.basename(sys.argv[0])
    if name in WAYS:
        return serve(name)
    os.makedirs(sys.argv[1], exist_ok=True)
    for way in WAYS:
        link = os.path.join(sys.argv[1], way)
        if not os.path.islink(link):
            os.symlink(os.path.abspath(__file__), link)


main()
