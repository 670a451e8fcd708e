-- The template of the user's database: the tables, no instruments, one property.
PRAGMA encoding = 'UTF-8';
BEGIN;

CREATE TABLE app_property (
    app_property_id INTEGER PRIMARY KEY AUTOINCREMENT,
    app_property_key TEXT,
    app_property_val TEXT
);
CREATE UNIQUE INDEX "app_property-app_property_key" ON app_property (app_property_key);

CREATE TABLE device (
    device_id INTEGER PRIMARY KEY AUTOINCREMENT,
    device_type INTEGER DEFAULT 0,
    device_number INTEGER DEFAULT 0,
    device_name TEXT,
    device_name_search TEXT,
    device_refdata BLOB
);
CREATE INDEX "device-device_refdata" ON device (device_refdata);
CREATE UNIQUE INDEX "device-type_number_ref" ON device (device_type, device_number, device_refdata);
CREATE INDEX "device-device_type" ON device (device_type);
CREATE UNIQUE INDEX "device-type_number" ON device (device_type, device_number);
CREATE INDEX "device-type_name" ON device (device_type, device_name_search);

CREATE TABLE device_snapshot (
    device_snapshot_id INTEGER PRIMARY KEY AUTOINCREMENT,
    device_id INTEGER,
    device_snapshot_info TEXT,
    device_snapshot_info_search TEXT,
    device_snapshot_datetime DATETIME,
    device_snapshot_data BLOB,
    device_snapshot_refdata BLOB,
    device_snapshot_factory INTEGER DEFAULT 0
);
CREATE INDEX "device_snapshot-device_snapshot_data"
    ON device_snapshot (device_snapshot_data, device_snapshot_refdata);
CREATE INDEX "device_snapshot-device_id" ON device_snapshot (device_id);

CREATE TABLE device_snapshot_property (
    device_snapshot_property_id INTEGER PRIMARY KEY AUTOINCREMENT,
    device_snapshot_id INTEGER,
    device_snapshot_property_key TEXT,
    device_snapshot_property_val TEXT
);
CREATE UNIQUE INDEX "device_snapshot_property-device_snapshot_id_key"
    ON device_snapshot_property (device_snapshot_id, device_snapshot_property_key);
CREATE INDEX "device_snapshot_property-device_snapshot_id"
    ON device_snapshot_property (device_snapshot_id);

CREATE TABLE device_property (
    device_property_id INTEGER PRIMARY KEY AUTOINCREMENT,
    device_id INTEGER,
    device_property_key TEXT,
    device_property_val TEXT
);
CREATE UNIQUE INDEX "device_property-device_id_key"
    ON device_property (device_id, device_property_key);
CREATE INDEX "device_property-device_id" ON device_property (device_id);

CREATE TABLE feature (
    feature_id INTEGER PRIMARY KEY AUTOINCREMENT,
    feature_type INTEGER,
    feature_datetime TEXT,
    feature_name TEXT,
    feature_name_search TEXT,
    feature_info TEXT,
    feature_data BLOB
);
CREATE INDEX "feature-feature_data" ON feature (feature_data);
CREATE INDEX "feature-feature_type" ON feature (feature_type);
CREATE INDEX "feature-feature_name_search" ON feature (feature_name_search);

CREATE TRIGGER device_delete AFTER DELETE ON device
BEGIN
    DELETE FROM device_snapshot WHERE device_id = old.device_id;
    DELETE FROM device_property WHERE device_id = old.device_id;
END;

CREATE TRIGGER device_snapshot_delete AFTER DELETE ON device_snapshot
BEGIN
    DELETE FROM device_snapshot_property WHERE device_snapshot_id = old.device_snapshot_id;
END;

INSERT INTO app_property VALUES (1, 'autoconnect', '1');
INSERT INTO sqlite_sequence (name, seq) VALUES ('feature', 0);
INSERT INTO sqlite_sequence (name, seq) VALUES ('device_snapshot', 0);
INSERT INTO sqlite_sequence (name, seq) VALUES ('device', 0);

COMMIT;
