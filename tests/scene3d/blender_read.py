"""Run by Blender: reads one glTF file, or one of Blender's own, and prints where its cameras put points, as JSON after a mark.

blender -b --factory-startup -P blender_read.py -- FILE POINTS, where POINTS is a JSON file of
{"width", "height", "aspect", "rate", "first",
 "cameras": [{"id", "moments": [{"frame", "points": [[x, y, z], ...]}]}]}.
Points are in the file's unit and in the axes of glTF; a camera without an id goes by its name. Only glTF needs the aspect and
the rate, which a file of Blender has in it.
"""

import json
import sys

import bpy
from bpy_extras.object_utils import world_to_camera_view
from mathutils import Vector

file, wanted = sys.argv[sys.argv.index("--") + 1:]
wanted = json.load(open(wanted, encoding="utf-8"))
if file.endswith(".blend"):
    bpy.ops.wm.open_mainfile(filepath=file)
    scene = bpy.context.scene
else:
    bpy.ops.wm.read_factory_settings(use_empty=True)
    scene = bpy.context.scene
    scene.render.fps = wanted["rate"]
    bpy.ops.import_scene.gltf(filepath=file)
    scene.render.resolution_x, scene.render.resolution_y = wanted["width"], wanted["height"]
    # Neither may be below 1.
    scene.render.pixel_aspect_x = max(1, wanted["aspect"])
    scene.render.pixel_aspect_y = max(1, 1 / wanted["aspect"])
cameras = [thing for thing in scene.objects if thing.type == "CAMERA"]
ids = {thing.get("id", thing.name): thing for thing in cameras}
result = []
for camera in wanted["cameras"]:
    found = ids[camera["id"]]
    for moment in camera["moments"]:
        time = moment["frame"] - wanted["first"]
        scene.frame_set(int(time // 1), subframe=time % 1)
        bpy.context.view_layer.update()
        for x, y, z in moment["points"]:
            seen = world_to_camera_view(scene, found, Vector((x, -z, y)))
            result.append([seen.x * wanted["width"], (1 - seen.y) * wanted["height"]])
print("RESULT " + json.dumps(result))
