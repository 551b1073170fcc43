int TorvalenPlaceholder = 0;
